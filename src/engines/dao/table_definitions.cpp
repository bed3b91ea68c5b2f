// The tables of a file, and changes of them.

#include <algorithm>

#include "engines/dao/dao_database.h"
#include "engines/dao/definitions.h"
#include "platform/clock.h"
#include "platform/text.h"

namespace voxa {

using dao::Kind;
using dao::Object;

namespace {

constexpr std::uint32_t systemObject = 0x80000002;  // of the attributes of a table

bool isOwn(const Object& table, const std::string& name) {
  return (static_cast<std::uint32_t>(table.number("Attributes")) & systemObject) == 0 &&
         !name.starts_with("MSys") && !name.starts_with("~");
}

bool namesField(const Relation& relation, const std::string& table, const std::string& field) {
  return std::any_of(relation.fields.begin(), relation.fields.end(), [&](const auto& pair) {
    return (equalNoCase(relation.table, table) && equalNoCase(pair.first, field)) ||
           (equalNoCase(relation.foreignTable, table) && equalNoCase(pair.second, field));
  });
}

}  // namespace

Object DaoDatabase::current(Kind kind, const char* collection) const {
  Object all = opened().object(kind, collection);
  (void)all.call("Refresh");
  return all;
}

Object DaoDatabase::tableObject(std::string_view table) const {
  const std::string name(table);
  try {
    return current(Kind::tableDefs, "TableDefs").item(name);
  } catch (const Error& error) {
    if (error.number() != err::dbNotInCollection) throw;
    throw Error(err::dbUnknownTable, "There is no table \"" + name + "\"");
  }
}

std::vector<std::string> DaoDatabase::tableNames() const {
  return session_->guarded([&] {
    std::vector<std::string> out;
    dao::forEach(current(Kind::tableDefs, "TableDefs"), [&](const Object& table) {
      std::string name = table.text("Name");
      if (isOwn(table, name)) out.push_back(std::move(name));
    });
    return out;
  });
}

const TableDef& DaoDatabase::tableDef(std::string_view table) const {
  return session_->guarded([&]() -> const TableDef& {
    TableDef found = dao::readTable(tableObject(table));
    TableDef& kept = definitions_[toLower(table)];
    kept = std::move(found);
    return kept;
  });
}

void DaoDatabase::createTable(const TableDef& definition) {
  session_->guarded([&] {
    const Object table = opened().object(Kind::tableDef, "CreateTableDef", definition.name);
    for (const FieldDef& field : definition.fields) dao::appendField(table, field);
    for (const IndexDef& index : definition.indexes) dao::appendIndex(table, index);
    (void)current(Kind::tableDefs, "TableDefs").call("Append", table);
  });
}

void DaoDatabase::deleteTable(std::string_view table) {
  session_->guarded([&] {
    (void)tableObject(table);
    (void)current(Kind::tableDefs, "TableDefs").call("Delete", std::string(table));
  });
}

void DaoDatabase::addField(std::string_view table, const FieldDef& definition) {
  session_->guarded([&] {
    session_->inStep([&] {
      dao::appendField(tableObject(table), definition);
      if (definition.defaultValue.isNull()) return;
      const std::string field = dao::quoted(definition.name);
      (void)execute("UPDATE " + dao::quoted(table) + " SET " + field + " = [the default]",
                    {{"the default", definition.defaultValue}});
    });
  });
}

void DaoDatabase::deleteField(std::string_view table, std::string_view field) {
  session_->guarded([&] {
    const Object fields = tableObject(table).object(Kind::fields, "Fields");
    if (fields.number("Count") == 1) {
      (void)fields.item(std::string(field));
      throw Error(err::dbInvalidArgument,
                  "Field '" + std::string(field) + "' is the last one of table '" + std::string(table) + "'");
    }
    (void)fields.call("Delete", std::string(field));
  });
}

void DaoDatabase::addIndex(std::string_view table, const IndexDef& index) {
  session_->guarded([&] { dao::appendIndex(tableObject(table), index); });
}

void DaoDatabase::deleteIndex(std::string_view table, std::string_view index) {
  session_->guarded(
      [&] { (void)tableObject(table).object(Kind::indexes, "Indexes").call("Delete", std::string(index)); });
}

/// Raises what the rows of a field forbid to be changed.
void DaoDatabase::requireRows(const std::string& table, const FieldDef& old, const FieldDef& next) {
  const auto refuse = [&](int number, const char* why) {
    throw Error(number, "Rows of table '" + table + "' have " + why + " in field '" + old.name + "'");
  };
  visitRows(
      "SELECT " + dao::quoted(old.name) + " FROM " + dao::quoted(table),
      [&](const Value* row) {
        const Value converted = convertForField(*row, next.type, next.size, &session_->clock);
        if (next.required && converted.isNull()) refuse(err::dbRequired, "no value");
        if (isText(next.type) && !next.allowZeroLength && converted.isText() && converted.toText().empty())
          refuse(err::dbZeroLength, "a text without characters");
        return true;
      },
      {});
}

void DaoDatabase::alterField(std::string_view table, const FieldDef& definition) {
  session_->guarded([&] {
    const TableDef now = dao::readTable(tableObject(table));
    const FieldDef* const found = now.field(definition.name);
    if (found == nullptr)
      throw Error(err::dbNotInCollection, "Table '" + now.name + "' has no field '" + definition.name + "'");
    const FieldDef& old = *found;
    FieldDef next = definition;
    if (greatestSize(next.type) == 0 || next.size == 0) next.size = greatestSize(next.type);
    if (next.autoIncrement != old.autoIncrement)
      throw Error(err::dbInvalidArgument, "Whether field '" + old.name + "' of table '" + now.name +
                                              "' is numbered is settled when the table is made");
    if (isBinary(next.type) != isBinary(old.type))
      throw Error(err::dbConversion, "Field '" + old.name + "' of table '" + now.name +
                                         "' cannot change between bytes and other values");
    if (next.type != old.type) {
      const auto all = relations();
      const bool isBound =
          std::any_of(now.indexes.begin(), now.indexes.end(),
                      [&](const IndexDef& index) {
                        return std::any_of(index.fields.begin(), index.fields.end(),
                                           [&](const auto& name) { return equalNoCase(name, old.name); });
                      }) ||
          std::any_of(all.begin(), all.end(),
                      [&](const Relation& relation) { return namesField(relation, now.name, old.name); });
      if (isBound)
        throw Error(err::dbFieldInUse, "Field '" + old.name + "' of table '" + now.name +
                                           "' cannot be given another type: an index or relation needs it");
    }
    requireRows(now.name, old, next);
    session_->inStep([&] {
      if (next.type != old.type || next.size != old.size) {
        (void)execute("ALTER TABLE " + dao::quoted(now.name) + " ALTER COLUMN " + dao::quoted(old.name) +
                          " " + sqlType(next),
                      {});
      }
      const Object field = tableObject(now.name).object(Kind::fields, "Fields").item(old.name);
      const FieldDef altered = dao::readField(field);
      if (next.required != altered.required) field.put("Required", next.required);
      if (isText(next.type) && next.allowZeroLength != altered.allowZeroLength)
        field.put("AllowZeroLength", next.allowZeroLength);
      if (next.defaultValue != altered.defaultValue)
        field.put("DefaultValue", next.defaultValue.isNull() ? std::string() : dao::defaultExpression(next));
      if (next.validationRule != altered.validationRule) field.put("ValidationRule", next.validationRule);
    });
  });
}

}  // namespace voxa
