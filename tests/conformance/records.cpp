#include "conformance/records.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace voxa::conformance {

namespace {

class Reader {
 public:
  explicit Reader(std::istream& in) : in_(in) {}

  std::vector<Record> run() {
    std::vector<Record> records;
    while (next()) {
      if (!line_.empty()) records.push_back(record());
    }
    return records;
  }

 private:
  bool next() {
    do {
      if (!std::getline(in_, line_)) return false;
      ++number_;
      if (!line_.empty() && line_.back() == '\r') line_.pop_back();
    } while (line_.starts_with('#'));
    return true;
  }
  bool nextOfRecord() { return next() && !line_.empty(); }

  [[noreturn]] void fail() const {
    throw std::runtime_error("line " + std::to_string(number_) + " is no part of a record: " + line_);
  }

  Record record() {
    Record record;
    record.line = number_;
    std::istringstream words(line_);
    std::string kind;
    std::string what;
    if (!(words >> kind >> what)) fail();
    const auto number = [&] {
      int value = 0;
      if (!(words >> value)) fail();
      return value;
    };
    if (kind == "table") {
      record.kind = Record::Kind::table;
      record.text = what;
      for (std::string name, type; nextOfRecord(); record.columns.emplace_back(name, type)) {
        if (!(std::istringstream(line_) >> name >> type)) fail();
      }
      return record;
    }
    if (kind != "statement" && kind != "query") fail();
    if (kind == "statement") record.kind = Record::Kind::statement;
    if (what == "error") {
      record.error = number();
    } else if (record.kind == Record::Kind::query) {
      record.types = what;
      record.sorted = static_cast<bool>(words >> what);
      if (what.find_first_not_of("IRDT") != std::string::npos && what != "rowsort") fail();
    } else if (what == "count") {
      record.count = number();
    } else if (what != "ok") {
      fail();
    }
    bool results = false;
    while (nextOfRecord()) {
      if (line_ == "----") {
        results = true;
      } else if (results) {
        record.rows.push_back(line_);
      } else {
        record.text += (record.text.empty() ? "" : " ") + line_;
      }
    }
    if (record.text.empty() || results == record.types.empty()) fail();
    if (record.sorted) std::sort(record.rows.begin(), record.rows.end());
    return record;
  }

  std::istream& in_;
  std::string line_;
  int number_ = 0;
};

}  // namespace

std::vector<Record> readRecords(std::istream& in) {
  return Reader(in).run();
}

}  // namespace voxa::conformance
