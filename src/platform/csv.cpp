#include "platform/csv.h"

#include <algorithm>

namespace voxa {

namespace {

class Reader {
 public:
  Reader(std::string_view text, char delimiter) : rest_(text), delimiter_(delimiter) {}

  bool next(CsvRecord& record) {
    if (rest_.empty()) return false;
    record = {line_, {}, ""};
    const std::string_view begin = rest_;
    do record.fields.push_back(field(record));
    while (record.fault.empty() && take(delimiter_));
    if (record.fault.empty() && !rest_.empty() && !atLineEnd()) {
      record.fault = "text behind the closing quotation mark";
    }
    if (!record.fault.empty()) {
      // The other lines of the record are read on their own: a stray quotation mark must not hide their
      // faults.
      line_ = record.line;
      rest_ = begin.substr(std::min(begin.find('\n'), begin.size()));
    }
    endLine();
    return true;
  }

 private:
  bool take(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }
  [[nodiscard]] bool atLineEnd() const { return rest_.starts_with("\r\n") || rest_.starts_with('\n'); }
  void endLine() {
    take('\r');
    if (take('\n')) ++line_;
  }

  std::string field(CsvRecord& record) { return take('"') ? quoted(record) : plain(record); }
  std::string plain(CsvRecord& record) {
    std::size_t length = 0;
    while (length < rest_.size() && rest_[length] != delimiter_ && rest_[length] != '\n' &&
           rest_.substr(length, 2) != "\r\n") {
      if (rest_[length] == '"') record.fault = "a quotation mark inside a field without them";
      ++length;
    }
    std::string text(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return text;
  }
  std::string quoted(CsvRecord& record) {
    std::string text;
    for (;;) {
      if (rest_.empty()) {
        record.fault = "a quotation mark that no other one closes";
        return "";
      }
      const char c = rest_.front();
      rest_.remove_prefix(1);
      if (c == '"' && !take('"')) return text;
      if (c == '\n') ++line_;
      text += c;
    }
  }

  std::string_view rest_;
  char delimiter_;
  std::size_t line_ = 1;
};

/// Whether the text needs an apostrophe in front: a spreadsheet would calculate it, or would do so but for
/// the apostrophes that it begins with. Of those one more must be told from its own.
bool isFormula(const std::string& text) {
  const std::size_t first = text.find_first_not_of('\'');
  return first != std::string::npos &&
         std::string_view("=+-@\t\r").find(text[first]) != std::string_view::npos;
}

}  // namespace

std::vector<CsvRecord> readCsv(std::string_view text, char delimiter) {
  std::vector<CsvRecord> records;
  Reader reader(text, delimiter);
  for (CsvRecord record; reader.next(record);) {
    const bool empty = record.fault.empty() && record.fields.size() == 1 && record.fields.front().empty();
    if (!empty) records.push_back(std::move(record));
  }
  return records;
}

std::string csvField(const std::string& text) {
  const std::string safe = isFormula(text) ? "'" + text : text;
  if (safe.find_first_of(",\"\r\n") == std::string::npos) return safe;
  std::string quoted = "\"";
  for (const char c : safe) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::string csvText(const std::string& field) {
  return field.starts_with('\'') && isFormula(field) ? field.substr(1) : field;
}

}  // namespace voxa
