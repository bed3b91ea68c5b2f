#include "conformance/road.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "platform/datetime.h"
#include "platform/error.h"

namespace voxa::conformance {

namespace {

const std::pair<const char*, DataType> typeNames[] = {
    {"Boolean", DataType::Boolean}, {"Byte", DataType::Byte},         {"Integer", DataType::Integer},
    {"Long", DataType::Long},       {"Currency", DataType::Currency}, {"Single", DataType::Single},
    {"Double", DataType::Double},   {"Date", DataType::Date},         {"Memo", DataType::Memo}};

}  // namespace

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

Road::Rows Seam::rows(std::string_view sql) {
  const auto rows = database_->openRecordset(sql);
  Rows out{rows->fieldCount(), {}};
  for (; !rows->eof(); rows->moveNext()) {
    std::vector<Value>& row = out.values.emplace_back();
    for (std::size_t i = 0; i < out.columns; ++i) row.push_back(rows->get(i));
  }
  return out;
}

namespace {

std::string shown(const Value& value, char type) {
  if (value.isNull()) return "NULL";
  const bool moment = std::holds_alternative<DateTime>(value.data());
  const bool real = std::holds_alternative<double>(value.data());
  const char is = value.isText() ? 'T' : moment ? 'D' : real ? 'R' : 'I';
  const std::string text = is == 'D'   ? formatDateTime(value.toDateTime(), "yyyy-mm-dd hh:nn:ss")
                           : is == 'I' ? std::to_string(value.toInt32())
                           : is == 'R' && value.toDouble() == 0 && std::signbit(value.toDouble())
                               ? "-0"
                               : value.toText();
  return is != type ? std::string(1, is) + ":" + text : text.empty() ? "(empty)" : text;
}

/// What a record gives, in the form in which its file has it.
struct Outcome {
  std::string text;
  std::string description;  ///< of an error
};

Outcome outcomeOf(const Record& record, Road& road) {
  Outcome out;
  if (record.kind == Record::Kind::table) {
    TableDef table{record.text, {}, {}};
    for (const auto& [name, type] : record.columns) table.fields.push_back(fieldOf(name, type));
    road.createTable(table);
  } else if (record.kind == Record::Kind::statement) {
    const int changed = road.execute(record.text);
    if (record.count) out.text = "count " + std::to_string(changed);
  } else {
    const Road::Rows found = road.rows(record.text);
    if (found.columns != record.types.size()) return {std::to_string(found.columns) + " columns", ""};
    std::vector<std::string> rows;
    for (const std::vector<Value>& values : found.values) {
      std::string row;
      for (std::size_t i = 0; i < values.size(); ++i)
        row += (i > 0 ? "|" : "") + shown(values[i], record.types[i]);
      rows.push_back(row);
    }
    if (record.sorted) std::sort(rows.begin(), rows.end());
    for (const std::string& row : rows) out.text += "\n" + row;
  }
  return out;
}

std::string expectedOf(const Record& record) {
  if (record.error) return "error " + std::to_string(*record.error);
  if (record.count) return "count " + std::to_string(*record.count);
  std::string text;
  for (const std::string& row : record.rows) text += "\n" + row;
  return text;
}

}  // namespace

std::string difference(const Record& record, Road& road) {
  Outcome given;
  try {
    given = outcomeOf(record, road);
  } catch (const Error& error) {
    given = {"error " + std::to_string(error.number()), " (" + error.description() + ")"};
  }
  const std::string expected = expectedOf(record);
  if (given.text == expected) return {};
  return "expected: " + expected + "\ngiven: " + given.text + given.description;
}

int runFiles(const std::filesystem::path& folder,
             const std::function<std::unique_ptr<Road>(const std::string& name)>& open) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".test") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  int records = 0;
  int failures = 0;
  for (const std::filesystem::path& file : files) {
    const auto road = open(file.stem().string());
    std::ifstream in(file);
    for (const Record& record : readRecords(in)) {
      ++records;
      const std::string found = difference(record, *road);
      if (found.empty()) continue;
      ++failures;
      std::printf("%s:%d %s\n%s\n", file.filename().string().c_str(), record.line, record.text.c_str(),
                  found.c_str());
    }
  }
  std::printf("%d of %d records failed\n", failures, records);
  return records == 0 ? 1 : failures;
}

}  // namespace voxa::conformance
