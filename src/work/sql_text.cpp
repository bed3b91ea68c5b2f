#include "work/sql_text.h"

#include <array>
#include <charconv>
#include <type_traits>

#include "platform/datetime.h"

namespace voxa {

namespace {

std::string quoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\'') out += c;
    out += c;
  }
  return out + "'";
}

std::string bracketed(const std::string& name) {
  return "[" + name + "]";
}

/// As few digits as tell the number from all others.
std::string numberText(double number) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

/// A moment of whole seconds reads as one; of any other only its number is exact.
std::string momentText(DateTime moment) {
  const std::string text = formatDateTime(moment, "mm/dd/yyyy hh:nn:ss");
  const auto read = parseDateLiteral(text, nullptr);
  return read && *read == moment ? "#" + text + "#" : "CDate(" + numberText(moment.days) + ")";
}

std::string fieldText(const FieldDef& field) {
  std::string text = bracketed(field.name) + " " + (field.autoIncrement ? "COUNTER" : sqlType(field));
  if (field.required) text += " NOT NULL";
  if (!field.defaultValue.isNull()) text += " DEFAULT " + sqlText(field.defaultValue);
  if (isText(field.type) && !field.allowZeroLength) text += " DISALLOW ZERO LENGTH";
  if (!field.validationRule.empty()) text += " VALIDATION " + quoted(field.validationRule);
  return text;
}

}  // namespace

std::string sqlText(const Value& value) {
  return std::visit(
      [](const auto& held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          return "NULL";
        } else if constexpr (std::is_same_v<Held, bool>) {
          return held ? "TRUE" : "FALSE";
        } else if constexpr (std::is_same_v<Held, double>) {
          return numberText(held);
        } else if constexpr (std::is_same_v<Held, DateTime>) {
          return momentText(held);
        } else if constexpr (std::is_same_v<Held, std::string>) {
          return quoted(held);
        } else if constexpr (std::is_same_v<Held, Bytes>) {
          return "0x" + hexText(held);
        } else {
          return std::to_string(held);
        }
      },
      value.data());
}

std::string sqlText(const TableDef& table) {
  std::string fields;
  for (const FieldDef& field : table.fields) fields += (fields.empty() ? "\n  " : ",\n  ") + fieldText(field);
  return "CREATE TABLE " + bracketed(table.name) + " (" + fields + ")";
}

std::string sqlText(const IndexDef& index, const std::string& table) {
  const bool unique = index.unique && !index.primary;
  return (unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") + bracketed(index.name) + " ON " +
         bracketed(table) + " (" + nameList(index.fields) + ")" +
         (index.primary    ? " WITH PRIMARY"
          : index.required ? " WITH DISALLOW NULL"
                           : "");
}

std::string sqlText(const Relation& relation) {
  std::vector<std::string> primary;
  std::vector<std::string> foreign;
  for (const auto& [of, by] : relation.fields) {
    primary.push_back(of);
    foreign.push_back(by);
  }
  return "ALTER TABLE " + bracketed(relation.foreignTable) + " ADD CONSTRAINT " + bracketed(relation.name) +
         " FOREIGN KEY (" + nameList(foreign) + ") REFERENCES " + bracketed(relation.table) + " (" +
         nameList(primary) + ")" + (relation.cascadeUpdate ? " ON UPDATE CASCADE" : "") +
         (relation.cascadeDelete ? " ON DELETE CASCADE" : "");
}

std::string sqlText(const QueryDef& query) {
  return "CREATE PROCEDURE " + bracketed(query.name) + " AS " + quoted(query.sql);
}

}  // namespace voxa
