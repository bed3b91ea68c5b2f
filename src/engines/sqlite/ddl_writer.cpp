#include <algorithm>
#include <charconv>
#include <cmath>

#include "engines/language/dialect.h"
#include "engines/sqlite/ddl.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::ddl {

namespace {

constexpr std::size_t greatestName = 64;
/// SQLite's own name for the row number. Recordsets find their rows by it.
constexpr std::string_view rowNumber = "_rowid_";

std::string quote(std::string_view text, char mark) {
  std::string out(1, mark);
  for (const char c : text) {
    if (c == mark) out += mark;
    out += c;
  }
  return out += mark;
}

std::string typeText(const FieldDef& field) {
  if (field.autoIncrement) return "INTEGER";
  const auto* found = std::find_if(std::begin(typeWords), std::end(typeWords),
                                   [&](const TypeWord& t) { return t.type == field.type; });
  std::string text(found->word);
  if (greatestSize(field.type) > 0) text += "(" + std::to_string(field.size) + ")";
  if (isText(field.type)) text += std::string(" COLLATE ") + dialect::collation;
  return text;
}

bool contains(const std::vector<std::string>& names, std::string_view name) {
  return std::any_of(names.begin(), names.end(), [&](const std::string& n) { return equalNoCase(n, name); });
}

std::string constraint(std::string_view name) {
  return " CONSTRAINT " + quoteName(name);
}

/// DEFAULT of a field. A boolean without a default has 0. One whose default is False has FALSE, so that it
/// reads back as such.
std::string defaultText(const FieldDef& field) {
  if (field.type == DataType::Boolean) {
    if (field.defaultValue.isNull()) return " DEFAULT 0";
    return field.defaultValue.toBool() ? " DEFAULT -1" : " DEFAULT FALSE";
  }
  return field.defaultValue.isNull() ? "" : " DEFAULT " + literal(field.defaultValue);
}

void checkNumbered(const TableDef& table) {
  const auto count = std::count_if(table.fields.begin(), table.fields.end(),
                                   [](const FieldDef& field) { return field.autoIncrement; });
  if (count > 1) {
    throw Error(err::dbInvalidArgument, "Table '" + table.name + "' has two auto-increment fields");
  }
}

void checkIndexes(const TableDef& table) {
  const auto refuse = [&](const IndexDef& index, const char* why) {
    throw Error(err::dbInvalidArgument, "Index '" + index.name + "' of table '" + table.name + "' " + why);
  };
  std::vector<std::string> names;
  bool primary = false;
  for (const IndexDef& index : table.indexes) {
    checkName(index.name);
    if (contains(names, index.name)) refuse(index, "is defined twice");
    if (index.fields.empty()) refuse(index, "has no fields");
    if (index.primary && primary) refuse(index, "is a second primary key");
    names.push_back(index.name);
    primary = primary || index.primary;
    for (const std::string& field : index.fields) {
      if (table.field(field) == nullptr) {
        throw Error(err::dbNotInCollection, "Index '" + index.name + "' of table '" + table.name +
                                                "' names field '" + field + "', which the table has not");
      }
    }
  }
}

}  // namespace

std::string quoteName(std::string_view name) {
  return quote(name, '"');
}
std::string quoteText(std::string_view text) {
  return quote(text, '\'');
}

std::string quoteNames(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + quoteName(name);
  return list;
}

std::string literal(const Value& value) {
  struct Writer {
    std::string operator()(std::monostate) const { return "NULL"; }
    std::string operator()(bool v) const { return v ? "-1" : "0"; }
    std::string operator()(std::uint8_t v) const { return std::to_string(v); }
    std::string operator()(std::int16_t v) const { return std::to_string(v); }
    std::string operator()(std::int32_t v) const { return std::to_string(v); }
    std::string operator()(double v) const {
      char digits[32];
      const auto end = std::to_chars(std::begin(digits), std::end(digits), v).ptr;
      return {digits, end};
    }
    std::string operator()(DateTime v) const { return (*this)(v.days); }
    std::string operator()(const std::string& v) const { return quoteText(v); }
    std::string operator()(const Bytes& v) const { return "X'" + hexText(v) + "'"; }
  };
  return std::visit(Writer{}, value.data());
}

void checkName(std::string_view name) {
  const bool bad = name.empty() || name.front() == ' ' || !isUtf8(name) ||
                   lengthInCharacters(name) > greatestName || equalNoCase(name, rowNumber) ||
                   std::any_of(name.begin(), name.end(), [](char c) {
                     return static_cast<unsigned char>(c) < ' ' ||
                            std::string_view(".!`[]").find(c) != std::string_view::npos;
                   });
  if (bad) throw Error(err::dbInvalidName, "'" + std::string(name) + "' is not a valid name");
}

FieldDef normalised(const FieldDef& field, const Clock& clock) {
  checkName(field.name);
  FieldDef out = field;
  const auto refuse = [&](const std::string& why) {
    throw Error(err::dbInvalidArgument, "Field '" + field.name + "' " + why);
  };
  if (std::none_of(std::begin(typeWords), std::end(typeWords),
                   [&](const TypeWord& t) { return t.type == field.type; })) {
    refuse("has an unknown type");
  }
  if (field.autoIncrement && field.type != DataType::Long) refuse("is numbered but no 32-bit integer");
  const int greatest = greatestSize(field.type);
  if (greatest > 0 && (field.size < 0 || field.size > greatest))
    refuse("has a size outside 1 to " + std::to_string(greatest));
  if (greatest == 0 || field.size == 0) out.size = greatest;
  if (!isText(field.type)) out.allowZeroLength = false;
  if (!field.defaultValue.isNull()) {
    if (isBinary(field.type)) refuse("is of bytes, which have no default");
    out.defaultValue = convertForField(field.defaultValue, out.type, out.size, &clock);
    const auto* number = std::get_if<double>(&out.defaultValue.data());
    if (number != nullptr && !std::isfinite(*number)) refuse("has a default that is no number");
  }
  return out;
}

TableDef normalised(const TableDef& definition, const Clock& clock) {
  checkName(definition.name);
  TableDef out = definition;
  if (out.fields.empty()) {
    throw Error(err::dbInvalidArgument, "Table '" + definition.name + "' has no fields");
  }
  std::vector<std::string> names;
  for (FieldDef& field : out.fields) {
    field = normalised(field, clock);
    if (contains(names, field.name)) {
      throw Error(err::dbDuplicateField,
                  "Field '" + field.name + "' is defined twice in table '" + definition.name + "'");
    }
    names.push_back(field.name);
  }
  checkIndexes(out);
  checkNumbered(out);
  for (IndexDef& index : out.indexes) {
    if (index.primary) index.unique = index.required = true;
  }
  // The primary key is part of the table's own text, so it comes first when the text is read back.
  std::stable_partition(out.indexes.begin(), out.indexes.end(), [](const IndexDef& i) { return i.primary; });
  return out;
}

namespace {

/// The constraint that needs a value in each field of an index.
std::string needsValue(const FieldDef& field, const IndexDef& index, bool apart) {
  // A numbered column takes its number when the value is Null, so its key must allow Null.
  if (!index.required || !contains(index.fields, field.name) || (index.primary && field.autoIncrement))
    return {};
  return constraint(std::string(apart ? primaryBy : requiredBy) + index.name) + " NOT NULL";
}

std::string column(const FieldDef& field, const Table& table, const Clock& clock) {
  std::string text = quoteName(field.name) + " " + typeText(field);
  const std::vector<IndexDef>& indexes = table.definition.indexes;
  if (field.autoIncrement) {
    const auto key = std::find_if(indexes.begin(), indexes.end(), [&](const IndexDef& index) {
      return isNumberedKey(table.definition, index);
    });
    text += constraint(key == indexes.end() ? numbered : key->name) + " PRIMARY KEY AUTOINCREMENT";
  }
  if (field.required) text += constraint(required) + " NOT NULL";
  for (const IndexDef& index : indexes) text += needsValue(field, index, index.primary && table.keyApart);
  if (field.type == DataType::Boolean) text += " NOT NULL";
  text += defaultText(field);
  if (isText(field.type) && !field.allowZeroLength) {
    text += constraint(field.name + std::string(zeroLength)) + " CHECK (length(" + quoteName(field.name) +
            ") > 0)";
  }
  if (!field.validationRule.empty()) {
    text += constraint(field.name + std::string(rule) + field.validationRule) + " CHECK (" +
            dialect::translateRule(field.validationRule, field, &clock) + ")";
  }
  return text;
}

}  // namespace

std::string column(const FieldDef& field, const Clock& clock) {
  return column(field, Table{.definition = {"", {field}, {}}}, clock);
}

bool isNumberedKey(const TableDef& table, const IndexDef& index) {
  return index.primary && index.fields.size() == 1 && table.field(index.fields[0]) != nullptr &&
         table.field(index.fields[0])->autoIncrement;
}

std::string indexName(const std::string& table, const IndexDef& index) {
  return table + "." + index.name;
}

std::string createIndex(const std::string& table, const IndexDef& index) {
  return std::string("CREATE ") + (index.unique ? "UNIQUE " : "") + "INDEX " +
         quoteName(indexName(table, index)) + " ON " + quoteName(table) + " (" + quoteNames(index.fields) +
         ")";
}

std::string tableText(const Table& table, const Clock& clock) {
  const TableDef& definition = table.definition;
  std::string text = "CREATE TABLE " + quoteName(definition.name) + " (";
  for (const FieldDef& field : definition.fields) {
    text += (&field == &definition.fields.front() ? "" : ", ") + column(field, table, clock);
  }
  for (const IndexDef& index : definition.indexes) {
    if (!index.primary || table.keyApart || isNumberedKey(definition, index)) continue;
    text += "," + constraint(index.name) + " PRIMARY KEY (" + quoteNames(index.fields) + ")";
  }
  for (const Relation& relation : table.relations) text += ", " + foreignKey(relation);
  return text + ")";
}

std::string createTable(const TableDef& definition, const Clock& clock) {
  Table table{.definition = definition};
  const bool numberedField = std::any_of(definition.fields.begin(), definition.fields.end(),
                                         [](const FieldDef& field) { return field.autoIncrement; });
  std::string indexes;
  for (const IndexDef& index : definition.indexes) {
    const bool numberedKey = isNumberedKey(definition, index);
    if (index.primary) table.keyApart = numberedField && !numberedKey;
    if (!index.primary || table.keyApart) indexes += "; " + createIndex(definition.name, index);
  }
  return tableText(table, clock) + indexes;
}

std::string foreignKey(const Relation& relation) {
  std::vector<std::string> primary;
  std::vector<std::string> foreign;
  for (const auto& [own, other] : relation.fields) {
    primary.push_back(own);
    foreign.push_back(other);
  }
  const auto action = [](bool cascade) { return cascade ? "CASCADE" : "RESTRICT"; };
  return constraint(relation.name).substr(1) + " FOREIGN KEY (" + quoteNames(foreign) + ") REFERENCES " +
         quoteName(relation.table) + " (" + quoteNames(primary) + ") ON UPDATE " +
         action(relation.cascadeUpdate) + " ON DELETE " + action(relation.cascadeDelete);
}

std::string createRelationIndex(const Relation& relation) {
  std::vector<std::string> foreign;
  for (const auto& fields : relation.fields) foreign.push_back(fields.second);
  return "CREATE INDEX " + quoteName(relationIndexName(relation)) + " ON " +
         quoteName(relation.foreignTable) + " (" + quoteNames(foreign) + ")";
}

const FieldDef& fieldOf(const TableDef& table, std::string_view name) {
  if (const FieldDef* field = table.field(name)) return *field;
  throw Error(err::dbNotInCollection, "Table '" + table.name + "' has no field '" + std::string(name) + "'");
}

std::string anyRow(const std::string& table, const std::string& condition) {
  return "SELECT EXISTS (SELECT 1 FROM " + quoteName(table) + (condition.empty() ? "" : " WHERE ") +
         condition + ")";
}

bool hasUniqueIndex(const TableDef& table, const std::vector<std::string>& fields) {
  return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const IndexDef& index) {
    return index.unique && index.fields.size() == fields.size() &&
           std::is_permutation(index.fields.begin(), index.fields.end(), fields.begin(), equalNoCase);
  });
}

bool hasIndexOn(const TableDef& table, const std::vector<std::string>& fields) {
  return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const IndexDef& index) {
    return index.fields.size() >= fields.size() &&
           std::equal(fields.begin(), fields.end(), index.fields.begin(), equalNoCase);
  });
}

std::string relationIndexName(const Relation& relation) {
  return relation.foreignTable + "." + relation.name + std::string(key);
}

}  // namespace voxa::ddl
