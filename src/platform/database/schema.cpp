#include "platform/database/schema.h"

#include <algorithm>

#include "platform/text.h"

namespace voxa {

namespace {

template <typename Part>
const Part* named(const std::vector<Part>& parts, std::string_view name) {
  const auto found = std::find_if(parts.begin(), parts.end(),
                                  [&](const Part& part) { return equalNoCase(part.name, name); });
  return found == parts.end() ? nullptr : &*found;
}

}  // namespace

const FieldDef* TableDef::field(std::string_view fieldName) const {
  return named(fields, fieldName);
}

const IndexDef* TableDef::index(std::string_view indexName) const {
  return named(indexes, indexName);
}

std::vector<std::string> TableDef::fieldNames() const {
  std::vector<std::string> names;
  names.reserve(fields.size());
  for (const FieldDef& field : fields) names.push_back(field.name);
  return names;
}

std::string nameList(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list.append(list.empty() ? "[" : ", [").append(name).append("]");
  return list;
}

std::string sqlType(const FieldDef& field) {
  const std::string size =
      "(" + std::to_string(field.size == 0 ? greatestSize(field.type) : field.size) + ")";
  switch (field.type) {
    case DataType::Boolean:
      return "BIT";
    case DataType::Byte:
      return "BYTE";
    case DataType::Integer:
      return "SHORT";
    case DataType::Long:
      return "LONG";
    case DataType::Currency:
      return "CURRENCY";
    case DataType::Single:
      return "SINGLE";
    case DataType::Double:
      return "DOUBLE";
    case DataType::Date:
      return "DATETIME";
    case DataType::Binary:
      return "BINARY" + size;
    case DataType::Text:
      return "TEXT" + size;
    case DataType::LongBinary:
      return "LONGBINARY";
    case DataType::Memo:
      break;
  }
  return "MEMO";
}

std::string insertionOf(const std::string& table, const std::vector<std::string>& fields) {
  std::vector<std::string> parameters;
  for (std::size_t i = 0; i < fields.size(); ++i)
    parameters.push_back("value " + std::to_string(i) + " of the row");
  return "INSERT INTO [" + table + "] (" + nameList(fields) + ") VALUES (" + nameList(parameters) + ")";
}

std::string literalText(std::string expression) {
  const bool isLiteral = expression.size() > 1 && expression.front() == expression.back();
  if (!isLiteral || (expression.front() != '"' && expression.front() != '#')) return expression;
  expression = expression.substr(1, expression.size() - 2);
  for (std::size_t at = 0; (at = expression.find("\"\"", at)) != std::string::npos; ++at)
    expression.erase(at, 1);
  return expression;
}

void addField(TableDef& td, const std::string& name, DataType type, int size, const Value& defaultValue) {
  FieldDef field;
  field.name = name;
  field.type = type;
  field.size = size;
  field.defaultValue = defaultValue;
  td.fields.push_back(std::move(field));
}

void addIndex(TableDef& td, const std::string& name, std::initializer_list<const char*> fields,
              IndexKind kind) {
  IndexDef index;
  index.name = name;
  index.fields.assign(fields.begin(), fields.end());
  index.primary = kind == IndexKind::primary;
  index.unique = kind != IndexKind::plain;
  index.required = kind == IndexKind::primary || kind == IndexKind::uniqueRequired;
  td.indexes.push_back(std::move(index));
}

}  // namespace voxa
