// Statements of definitions, carried out.

#include <algorithm>

#include "engines/language/definition.h"
#include "engines/language/writer.h"
#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"
#include "platform/text.h"

namespace voxa {

namespace {

using dialect::Definition;

/// A name that is not taken: the wanted one, or with a number behind it.
template <typename Taken>
std::string freeName(const std::string& wanted, Taken&& taken) {
  std::string name = wanted;
  for (int n = 1; taken(name); ++n) name = wanted + std::to_string(n);
  return name;
}

/// Names the indexes of `added` that have none. there: the table as it is.
void nameIndexes(TableDef& added, const TableDef& there) {
  for (IndexDef& index : added.indexes) {
    if (!index.name.empty()) continue;
    std::string wanted = index.primary ? "PrimaryKey" : "";
    for (const std::string& field : index.fields) wanted += index.primary ? "" : field;
    index.name = freeName(wanted, [&](const std::string& name) {
      return added.index(name) != nullptr || there.index(name) != nullptr;
    });
  }
}

}  // namespace

/// Fills in what a statement may leave to the engine.
Relation SqliteDatabase::completed(Relation relation) const {
  const std::vector<Relation>& there = opened().catalog.relations();
  if (relation.name.empty()) {
    relation.name = freeName(relation.table + relation.foreignTable, [&](const std::string& name) {
      return std::any_of(there.begin(), there.end(),
                         [&](const Relation& r) { return equalNoCase(r.name, name); });
    });
  }
  if (!relation.fields.empty() && relation.fields[0].first.empty()) {
    const TableDef& primary = definition(relation.table);
    const auto key = std::find_if(primary.indexes.begin(), primary.indexes.end(),
                                  [](const IndexDef& i) { return i.primary; });
    if (key == primary.indexes.end() || key->fields.size() != relation.fields.size()) {
      throw Error(err::dbNoUniqueIndex,
                  "Table '" + primary.name + "' has no primary key of as many fields as refer to it");
    }
    for (std::size_t i = 0; i < relation.fields.size(); ++i) relation.fields[i].first = key->fields[i];
  }
  return relation;
}

void SqliteDatabase::define(std::string_view sql) {
  using Kind = Definition::Kind;
  Definition statement = dialect::parseDefinition(sql, &session_->clock);
  const std::string& table = statement.table.name;
  redefine([&](OpenFile& /*open*/) {
    switch (statement.kind) {
      case Kind::createTable:
        if (!statement.required.empty()) {
          throw Error(err::dbNotInCollection,
                      "Table '" + table + "' has no field '" + statement.required.front() + "'");
        }
        nameIndexes(statement.table, {});
        createTable(statement.table);
        break;
      case Kind::addToTable:
        nameIndexes(statement.table, definition(table));
        for (const FieldDef& field : statement.table.fields) addField(table, field);
        for (const IndexDef& index : statement.table.indexes) addIndex(table, index);
        for (const std::string& field : statement.required) requireField(table, field);
        break;
      case Kind::alterField: {
        FieldDef field = statement.table.fields.front();
        const FieldDef* old = definition(table).field(field.name);
        if (old != nullptr) {
          if (!statement.givesDefault) field.defaultValue = old->defaultValue;
          if (!statement.givesRule) field.validationRule = old->validationRule;
          if (dialect::isTextType(old->type))
            field.allowZeroLength = field.allowZeroLength && old->allowZeroLength;
        }
        alterField(table, field);
        break;
      }
      case Kind::deleteField:
        deleteField(table, statement.name);
        break;
      case Kind::deleteConstraint:
        deleteConstraint(table, statement.name);
        break;
      case Kind::deleteIndex:
        deleteIndex(table, statement.name);
        break;
      case Kind::deleteTable:
        deleteTable(table);
        break;
      case Kind::createQuery:
        createQuery(statement.query);
        break;
      case Kind::deleteQuery:
        deleteQuery(statement.name);
        break;
    }
    for (const Relation& relation : statement.relations) createRelation(completed(relation));
  });
}

void SqliteDatabase::requireField(std::string_view table, const std::string& name) {
  FieldDef next = ddl::fieldOf(definition(table), name);
  next.required = true;
  alterField(table, next);
}

void SqliteDatabase::deleteConstraint(std::string_view table, const std::string& name) {
  const TableDef& owner = definition(table);
  for (const Relation& relation : opened().catalog.relations()) {
    if (relation.foreignTable == owner.name && equalNoCase(relation.name, name)) return deleteRelation(name);
  }
  if (owner.index(name) != nullptr) return deleteIndex(table, name);
  throw Error(err::dbNotInCollection, "Table '" + owner.name + "' has no index or relation '" + name +
                                          "'. That a field needs a value is changed by ALTER COLUMN");
}

}  // namespace voxa
