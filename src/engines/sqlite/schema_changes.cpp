// Changes of tables that exist: their indexes, fields, relations; and stored queries that go.

#include <algorithm>

#include "engines/language/writer.h"
#include "engines/sqlite/ddl.h"
#include "engines/sqlite/errors.h"
#include "engines/sqlite/sqlite_database.h"
#include "platform/text.h"

namespace voxa {

namespace {

using Names = std::vector<std::string>;

bool names(const IndexDef& index, std::string_view field) {
  return std::any_of(index.fields.begin(), index.fields.end(),
                     [&](const std::string& own) { return equalNoCase(own, field); });
}

bool names(const Relation& relation, const std::string& table, std::string_view field) {
  return std::any_of(relation.fields.begin(), relation.fields.end(), [&](const auto& pair) {
    return (relation.table == table && equalNoCase(pair.first, field)) ||
           (relation.foreignTable == table && equalNoCase(pair.second, field));
  });
}

/// Of one side of a relation.
Names fieldsOf(const Relation& relation, bool primary) {
  Names fields;
  for (const auto& [own, other] : relation.fields) fields.push_back(primary ? own : other);
  return fields;
}

/// The value of a field as one of another type; the conversion is that of a value that is stored.
std::string converted(const FieldDef& from, const FieldDef& to) {
  std::string value = ddl::quoteName(from.name);
  if (isText(to.type) && !isText(from.type))
    value = "vx_text(" + value + ", " + dialect::typeCode(from.type) + ")";
  return "vx_store(" + value + ", " + dialect::typeCode(to.type) + ", " + std::to_string(to.size) + ")";
}

}  // namespace

void SqliteDatabase::redefine(const std::function<void(OpenFile&)>& change) {
  session_->guarded([&] {
    OpenFile& open = file();
    beginChange();
    try {
      Step step(open.connection);
      change(open);
      finish(step);
    } catch (...) {
      open.unwritten.clear();  // those of this change: others are written by now
      open.catalog.invalidate();
      open.translated.clear();
      open.names.clear();
      throw;
    }
    ++generation_;
  });
}

ddl::Table SqliteDatabase::storedTable(std::string_view name) const {
  ddl::Table table{.definition = definition(name)};
  OpenFile& open = opened();
  const std::string& exact = table.definition.name;
  for (const Relation& relation : open.catalog.relations()) {
    if (relation.foreignTable == exact) table.relations.push_back(relation);
  }
  for (const IndexDef& index : table.definition.indexes) {
    if (index.primary && !ddl::isNumberedKey(table.definition, index))
      table.keyApart = hasIndexNamed(ddl::indexName(exact, index));
  }
  return table;
}

bool SqliteDatabase::hasIndexNamed(const std::string& name) const {
  return opened().connection.number(
             "SELECT EXISTS (SELECT 1 FROM sqlite_schema WHERE type = 'index' AND name = " +
             ddl::quoteText(name) + ")") != 0;
}

void SqliteDatabase::rewrite(const ddl::Table& table, const std::string& alongside) {
  const std::string& name = table.definition.name;
  writeSchema([&](Connection& connection) {
    connection.run(
        "UPDATE sqlite_schema SET sql = " + ddl::quoteText(ddl::tableText(table, session_->clock)) +
        " WHERE type = 'table' AND name = " + ddl::quoteText(name) + ";" + alongside);
  });
  opened().catalog.update(name);
}

void SqliteDatabase::requireUsable(const TableDef& table, const std::vector<std::string>& fields) const {
  for (const std::string& name : fields) {
    const FieldDef& field = ddl::fieldOf(table, name);
    if (opened().catalog.isSecret(table, field)) throw dialect::secretColumn(field);
  }
}

void SqliteDatabase::addIndex(std::string_view table, const IndexDef& index) {
  redefine([&](OpenFile& open) {
    ddl::Table owner = storedTable(table);
    const std::string& name = owner.definition.name;
    IndexDef added = index;
    for (std::string& field : added.fields) field = ddl::fieldOf(owner.definition, field).name;
    requireUsable(owner.definition, added.fields);
    TableDef& next = owner.definition;
    next.indexes.push_back(added);
    next = ddl::normalised(next, session_->clock);  // refuses what cannot be, and fills in
    added = *next.index(added.name);
    const bool numberedKey = ddl::isNumberedKey(next, added);
    if (added.primary) owner.keyApart = !numberedKey;
    if (added.required && !numberedKey) {
      for (const std::string& field : added.fields) {
        if (open.connection.number(ddl::anyRow(name, ddl::quoteName(field) + " IS NULL")) == 0) continue;
        throw Error(err::dbNullKey, "Index '" + added.name + "' of table '" + name +
                                        "' needs a value in field '" + field + "', and rows there have none");
      }
    }
    if (!numberedKey) {
      Statement create = open.connection.prepare(ddl::createIndex(name, added));
      if (const int code = create.step(); code != SQLITE_DONE) failChange(code, name);
    }
    if (added.required) {
      rewrite(owner);
    } else {
      open.catalog.update(name);
    }
  });
}

void SqliteDatabase::deleteIndex(std::string_view table, std::string_view index) {
  redefine([&](OpenFile& open) {
    ddl::Table owner = storedTable(table);
    TableDef& next = owner.definition;
    const IndexDef* const found = next.index(index);
    if (found == nullptr) {
      throw Error(err::dbNotInCollection,
                  "Table '" + next.name + "' has no index '" + std::string(index) + "'");
    }
    const IndexDef gone = *found;
    const bool numberedKey = ddl::isNumberedKey(next, gone);
    const std::string indexName = ddl::indexName(next.name, gone);
    std::erase(next.indexes, gone);
    for (const Relation& relation : open.catalog.relations()) {
      if (relation.table != next.name || ddl::hasUniqueIndex(next, fieldsOf(relation, true))) continue;
      throw Error(err::dbInUse, "Index '" + gone.name + "' of table '" + next.name +
                                    "' cannot be deleted: relation '" + relation.name + "' needs it");
    }
    // The index of a key that is part of the table's text becomes one of its own, with the same entries.
    std::string apart;
    if (gone.primary && !numberedKey && !owner.keyApart) {
      apart = "UPDATE sqlite_schema SET name = " + ddl::quoteText(indexName) +
              ", sql = " + ddl::quoteText(ddl::createIndex(next.name, gone)) +
              " WHERE type = 'index' AND sql IS NULL AND tbl_name = " + ddl::quoteText(next.name);
    }
    if (gone.required) {
      if (gone.primary) owner.keyApart = false;
      rewrite(owner, apart);
    }
    if (!numberedKey) open.connection.run("DROP INDEX " + ddl::quoteName(indexName));
    for (const Relation& relation : owner.relations) {
      const Names fields = fieldsOf(relation, false);
      if (!ddl::hasIndexOn(next, fields) && !hasIndexNamed(ddl::relationIndexName(relation)))
        open.connection.run(ddl::createRelationIndex(relation));
    }
    open.catalog.update(next.name);
  });
}

void SqliteDatabase::deleteField(std::string_view table, std::string_view name) {
  redefine([&](OpenFile& open) {
    const ddl::Table owner = storedTable(table);
    const TableDef& now = owner.definition;
    const FieldDef& field = ddl::fieldOf(now, name);
    requireUsable(now, {field.name});
    refuseIfBound(now, field.name, "deleted");
    if (now.fields.size() == 1)
      throw Error(err::dbInvalidArgument,
                  "Field '" + field.name + "' is the last one of table '" + now.name + "'");
    if (field.autoIncrement)
      throw Error(err::dbFieldInUse, "The numbered field '" + field.name + "' goes only with its table");
    rewrite(owner);  // SQLite takes a column out of a text that it wrote itself in parts
    open.connection.run("ALTER TABLE " + ddl::quoteName(now.name) + " DROP COLUMN " +
                        ddl::quoteName(field.name));
    open.catalog.update(now.name);
  });
}

void SqliteDatabase::refuseIfBound(const TableDef& table, const std::string& field, const char* what) const {
  const auto refuse = [&](const std::string& by) {
    throw Error(err::dbFieldInUse, "Field '" + field + "' of table '" + table.name + "' cannot be " + what +
                                       ": " + by + " needs it");
  };
  for (const Relation& relation : opened().catalog.relations()) {
    if (names(relation, table.name, field)) refuse("relation '" + relation.name + "'");
  }
  for (const IndexDef& index : table.indexes) {
    if (names(index, field)) refuse("index '" + index.name + "'");
  }
}

void SqliteDatabase::alterField(std::string_view table, const FieldDef& definition) {
  redefine([&](OpenFile& open) {
    ddl::Table owner = storedTable(table);
    const TableDef now = owner.definition;
    const FieldDef old = ddl::fieldOf(now, definition.name);
    requireUsable(now, {old.name});
    FieldDef next = ddl::normalised(definition, session_->clock);
    next.name = old.name;
    if (next.autoIncrement != old.autoIncrement) {
      throw Error(err::dbInvalidArgument, "Whether field '" + old.name + "' of table '" + now.name +
                                              "' is numbered is settled when the table is made");
    }
    if (isBinary(next.type) != isBinary(old.type)) {
      throw Error(err::dbConversion, "Field '" + old.name + "' of table '" + now.name +
                                         "' cannot change between bytes and other values");
    }
    if (next.type != old.type) refuseIfBound(now, old.name, "given another type");
    *std::find(owner.definition.fields.begin(), owner.definition.fields.end(), old) = next;
    const std::string column = ddl::quoteName(old.name);
    const std::string value = converted(old, next);
    if (!isText(old.type) && !isText(next.type) && next.type != old.type &&
        open.connection.number(ddl::anyRow(now.name, value + " <> " + column)) != 0) {
      throw Error(err::dbConversion, "Field '" + old.name + "' of table '" + now.name +
                                         "' has values that the other type cannot hold");
    }
    // What is in the rows must fulfil the new definition, too.
    const auto refuseRows = [&](int number, const std::string& condition, const char* why) {
      if (open.connection.number(ddl::anyRow(now.name, condition)) == 0) return;
      throw Error(number, "Rows of table '" + now.name + "' have " + why + " in field '" + old.name + "'");
    };
    if (next.required && next.type != DataType::Boolean)
      refuseRows(err::dbRequired, column + " IS NULL", "no value");
    rewrite(owner);
    if (next.type != old.type || next.size != old.size) {
      Statement convert =
          open.connection.prepare("UPDATE " + ddl::quoteName(now.name) + " SET " + column + " = " + value);
      if (const int code = convert.step(); code != SQLITE_DONE) failChange(code, now.name);
    }
    if (isText(next.type) && !next.allowZeroLength)
      refuseRows(err::dbZeroLength, "length(" + column + ") = 0", "a text without characters");
    if (!next.validationRule.empty()) {
      refuseRows(err::dbValidationRule,
                 "NOT (" + dialect::translateRule(next.validationRule, next, &session_->clock) + ")",
                 "values that the validation rule forbids");
    }
  });
}

void SqliteDatabase::deleteRelation(std::string_view name) {
  redefine([&](OpenFile& open) {
    const std::vector<Relation>& all = open.catalog.relations();
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const Relation& relation) { return equalNoCase(relation.name, name); });
    if (found == all.end())
      throw Error(err::dbNotInCollection, "There is no relation '" + std::string(name) + "'");
    const Relation gone = *found;
    ddl::Table owner = storedTable(gone.foreignTable);
    std::erase(owner.relations, gone);
    rewrite(owner);
    open.connection.run("DROP INDEX IF EXISTS " + ddl::quoteName(ddl::relationIndexName(gone)));
    open.catalog.update(owner.definition.name);
  });
}

void SqliteDatabase::deleteQuery(std::string_view name) {
  redefine([&](OpenFile& open) {
    open.connection.run(std::string("DELETE FROM ") + Catalog::queryTable +
                        " WHERE Name = " + ddl::quoteText(name));
    if (open.connection.changes() == 0)
      throw Error(err::dbNotInCollection, "There is no query '" + std::string(name) + "'");
    writeSchema([](Connection&) {});  // others must not go on with the text that they know
  });
}

}  // namespace voxa
