// What statements give, as files of records: for each engine behind the seam the same.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "conformance/records.h"
#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/temporary_folder.h"

namespace voxa::conformance {
namespace {

const std::pair<const char*, DataType> typeNames[] = {
    {"Boolean", DataType::Boolean}, {"Byte", DataType::Byte},     {"Integer", DataType::Integer},
    {"Long", DataType::Long},       {"Double", DataType::Double}, {"Date", DataType::Date},
    {"Memo", DataType::Memo}};

FieldDef fieldOf(const std::string& name, const std::string& type) {
  FieldDef field{.name = name, .allowZeroLength = true};
  if (type.starts_with("Text")) {
    field.size = std::stoi(type.substr(4));
    return field;
  }
  const auto* found = std::find_if(std::begin(typeNames), std::end(typeNames),
                                   [&](const auto& known) { return type == known.first; });
  if (found == std::end(typeNames)) throw std::runtime_error("no type: " + type);
  field.type = found->second;
  return field;
}

std::string shown(const Value& value, char type) {
  if (value.isNull()) return "NULL";
  const bool moment = std::holds_alternative<DateTime>(value.data());
  const bool real = std::holds_alternative<double>(value.data());
  const char is = value.isText() ? 'T' : moment ? 'D' : real ? 'R' : 'I';
  const std::string text = is == 'T'   ? value.toText()
                           : is == 'D' ? formatDateTime(value.toDateTime(), "yyyy-mm-dd hh:nn:ss")
                           : is == 'R' ? value.toText()
                                       : std::to_string(value.toInt32());
  return is != type ? std::string(1, is) + ":" + text : text.empty() ? "(empty)" : text;
}

/// A database of an engine, in which records are run.
class Conformance : public testing::Test {
 protected:
  void run(const Record& record) {
    if (record.kind == Record::Kind::table) {
      TableDef table{record.text, {}, {}};
      for (const auto& [name, type] : record.columns) table.fields.push_back(fieldOf(name, type));
      db_->createTable(table);
    } else if (record.kind == Record::Kind::statement) {
      const int changed = db_->execute(record.text);
      EXPECT_EQ(changed, record.count.value_or(changed));
    } else {
      EXPECT_EQ(rowsOf(record), record.rows);
    }
  }

  std::vector<std::string> rowsOf(const Record& record) {
    std::vector<std::string> out;
    const auto rows = db_->openRecordset(record.text);
    EXPECT_EQ(rows->fieldCount(), record.types.size());
    for (; !rows->eof(); rows->moveNext()) {
      std::string row;
      for (std::size_t i = 0; i < std::min(rows->fieldCount(), record.types.size()); ++i)
        row += (i > 0 ? "|" : "") + shown(rows->get(i), record.types[i]);
      out.push_back(row);
    }
    if (record.sorted) std::sort(out.begin(), out.end());
    return out;
  }

  SystemClock clock_;
  TemporaryFolder folder_;
  std::unique_ptr<DatabaseEngine> engine_ = makeSqliteEngine(clock_);
  std::shared_ptr<Database> db_ = engine_->create(folder_ / "test.mdb");
};

class Files : public Conformance, public testing::WithParamInterface<std::filesystem::path> {};

TEST_P(Files, Hold) {
  std::ifstream in(GetParam());
  for (const Record& record : readRecords(in)) {
    SCOPED_TRACE(GetParam().filename().string() + ":" + std::to_string(record.line) + " " + record.text);
    int number = 0;
    std::string description;
    try {
      run(record);
    } catch (const Error& error) {
      number = error.number();
      description = error.description();
    }
    EXPECT_EQ(number, record.error.value_or(0)) << description;
  }
}

// The examples of the page on the language: an expression and what it gives, and statements.
class Examples : public Conformance {};

TEST_F(Examples, OfThePageAreTrue) {
  db_->createTable({"AccessGroups", {fieldOf("Id", "Long"), fieldOf("Name", "Text50")}, {}});
  db_->createTable({"Cardholders",
                    {fieldOf("CardNum", "Long"), fieldOf("Name", "Text50"), fieldOf("AccessGroupId", "Long"),
                     fieldOf("Credit", "Integer"), fieldOf("ValidationDate", "Date")},
                    {}});
  std::ifstream page(LANGUAGE_PAGE);
  bool statements = false;
  int examples = 0;
  for (std::string line; std::getline(page, line);) {
    SCOPED_TRACE(line);
    if (line.starts_with("```")) {
      statements = line == "```sql";
    } else if (statements) {
      ++examples;
      EXPECT_EQ(errorOf([&] {
                  line.starts_with("select") && line.find(" into ") == line.npos
                      ? (void)db_->openRecordset(line)
                      : (void)db_->execute(line);
                }),
                0);
    } else if (const std::size_t middle = line.find("` | "); line.starts_with("| `") &&
                                                             line.ends_with("` |") && middle != line.npos &&
                                                             line[middle + 4] == '`') {
      ++examples;
      const auto row = db_->openRecordset("select " + line.substr(3, middle - 3));
      EXPECT_EQ(row->get(0).isNull()              ? "Null"
                : row->get(0).data().index() == 1 ? row->get(0).toBool() ? "-1" : "0"
                                                  : row->get(0).toText(),
                line.substr(middle + 5, line.size() - middle - 8));
    }
  }
  EXPECT_GT(examples, 80);
}

std::vector<std::filesystem::path> files() {
  std::vector<std::filesystem::path> found;
  for (const auto& entry : std::filesystem::directory_iterator(CONFORMANCE)) {
    if (entry.path().extension() == ".test") found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

INSTANTIATE_TEST_SUITE_P(Conformance, Files, testing::ValuesIn(files()),
                         [](const auto& info) { return info.param.stem().string(); });

}  // namespace
}  // namespace voxa::conformance
