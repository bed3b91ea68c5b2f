// Definitions of tables, relations and stored queries: reading and changing them. Their version, and copies
// of the file.

#include <algorithm>

#include "engines/sqlite/database_file.h"
#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// Query that tells (1 or 0) whether rows break a relation.
std::string violation(const Relation& relation) {
  std::string given;
  std::string match;
  for (const auto& [primary, foreign] : relation.fields) {
    given += " AND f." + ddl::quoteName(foreign) + " IS NOT NULL";
    match +=
        (match.empty() ? "" : " AND ") + ("p." + ddl::quoteName(primary)) + " = f." + ddl::quoteName(foreign);
  }
  return "SELECT EXISTS (SELECT 1 FROM " + ddl::quoteName(relation.foreignTable) + " f WHERE NOT EXISTS (" +
         "SELECT 1 FROM " + ddl::quoteName(relation.table) + " p WHERE " + match + ")" + given + ")";
}

}  // namespace

const TableDef& SqliteDatabase::definition(std::string_view table) const {
  OpenFile& open = opened();
  if (!open.catalog.refresh()) (void)file();
  if (const TableDef* found = open.catalog.table(table)) return *found;
  throw Error(err::dbUnknownTable, "There is no table '" + std::string(table) + "'");
}

std::size_t SqliteDatabase::schemaVersion() const {
  // SQLite keeps 32 bits there and has nothing to do with them itself. What another program has made negative
  // is a great number.
  return session_->guarded([&] {
    return static_cast<std::size_t>(
        static_cast<std::uint32_t>(opened().connection.number("PRAGMA user_version")));
  });
}

void SqliteDatabase::setSchemaVersion(std::size_t version) {
  session_->guarded([&] {
    beginChange();
    file().connection.run("PRAGMA user_version=" + std::to_string(version));
  });
}

void SqliteDatabase::copyTo(std::string_view path) const {
  session_->guarded([&] {
    (void)opened();
    copyDatabaseFile(path_, path, *session_);
  });
}

std::vector<std::string> SqliteDatabase::tableNames() const {
  return session_->guarded([&] {
    OpenFile& open = file();
    open.catalog.refresh();
    std::vector<std::string> names;
    for (const auto& table : open.catalog.tables()) names.push_back(table->name);
    return names;
  });
}

const TableDef& SqliteDatabase::tableDef(std::string_view table) const {
  return session_->guarded([&]() -> const TableDef& { return definition(table); });
}

void SqliteDatabase::finish(Step& step) {
  OpenFile& open = opened();
  open.translated.clear();
  open.names.clear();
  try {
    step.release();
  } catch (const Error&) {
    open.catalog.invalidate();
    throw;
  }
}

void SqliteDatabase::createTable(const TableDef& definition) {
  session_->guarded([&] {
    OpenFile& open = file();
    const TableDef table = ddl::normalised(definition, session_->clock);
    beginChange();
    Step step(open.connection);
    if (textOfName(table.name) || equalNoCase(table.name, Catalog::queryTable)) {
      throw Error(err::dbTableExists, "A table or query '" + table.name + "' exists already");
    }
    open.connection.run(ddl::createTable(table, session_->clock));
    open.catalog.add(table);
    finish(step);
  });
}

int SqliteDatabase::makeTable(const dialect::Translation& translation,
                              const std::function<void(Statement&)>& bindTo) {
  TableDef table{translation.table, {}, {}};
  std::string names;
  for (const FieldDef& column : translation.columns) {
    table.fields.push_back(
        {.name = column.name, .type = column.type, .size = column.size, .allowZeroLength = true});
    names += (names.empty() ? "" : ", ") + ddl::quoteName(column.name);
  }
  Step step(file().connection);
  createTable(table);
  const std::string sql = "INSERT INTO " + ddl::quoteName(table.name) + " (" + names + ") " + translation.sql;
  Statement insert = file().connection.prepare(sql);
  bindTo(insert);
  const int code = insert.step();
  if (code != SQLITE_DONE) failChange(code, table.name);
  step.release();
  return code;
}

void SqliteDatabase::addField(std::string_view table, const FieldDef& definition) {
  session_->guarded([&] {
    OpenFile& open = file();
    const FieldDef field = ddl::normalised(definition, session_->clock);
    beginChange();
    Step step(open.connection);
    const TableDef owner = this->definition(table);
    if (owner.field(field.name) != nullptr) {
      throw Error(err::dbDuplicateField,
                  "Table '" + owner.name + "' has a field '" + field.name + "' already");
    }
    if (field.autoIncrement) {
      throw Error(err::dbInvalidArgument, "An auto-increment field can only be made with its table");
    }
    if (field.required && field.defaultValue.isNull() && field.type != DataType::Boolean &&
        open.connection.number(ddl::anyRow(owner.name)) != 0) {
      throw Error(err::dbRequired, "Field '" + field.name + "' of table '" + owner.name +
                                       "' needs a value, and the rows there would have none");
    }
    open.connection.run("ALTER TABLE " + ddl::quoteName(owner.name) + " ADD COLUMN " +
                        ddl::column(field, session_->clock));
    open.catalog.update(owner.name);
    finish(step);
    ++generation_;
  });
}

void SqliteDatabase::deleteTable(std::string_view table) {
  session_->guarded([&] {
    OpenFile& open = file();
    beginChange();
    Step step(open.connection);
    const TableDef owner = definition(table);
    for (const Relation& relation : open.catalog.relations()) {
      if (equalNoCase(relation.table, owner.name) || equalNoCase(relation.foreignTable, owner.name)) {
        throw Error(err::dbInUse, "Table '" + owner.name + "' cannot be deleted: relation '" + relation.name +
                                      "' refers to it");
      }
    }
    open.connection.run("DROP TABLE " + ddl::quoteName(owner.name));
    step.release();
    schemaChanged();
    ++generation_;
  });
}

std::vector<Relation> SqliteDatabase::relations() const {
  return session_->guarded([&] {
    OpenFile& open = file();
    open.catalog.refresh();
    return open.catalog.relations();
  });
}

void SqliteDatabase::createRelation(const Relation& relation) {
  session_->guarded([&] {
    OpenFile& open = opened();
    ddl::checkName(relation.name);
    if (relation.fields.empty()) {
      throw Error(err::dbInvalidArgument, "Relation '" + relation.name + "' has no fields");
    }
    beginChange();
    Step step(open.connection);
    const TableDef primary = definition(relation.table);
    const TableDef foreign = definition(relation.foreignTable);
    for (const Relation& other : open.catalog.relations()) {
      if (!equalNoCase(other.name, relation.name)) continue;
      throw Error(err::dbObjectExists, "A relation '" + relation.name + "' exists already");
    }
    // The names are spelled as the tables spell them, in whatever case they were given.
    Relation exact = relation;
    exact.table = primary.name;
    exact.foreignTable = foreign.name;
    std::vector<std::string> primaryFields;
    std::vector<std::string> foreignFields;
    for (auto& [own, other] : exact.fields) {
      primaryFields.push_back(own = ddl::fieldOf(primary, own).name);
      foreignFields.push_back(other = ddl::fieldOf(foreign, other).name);
    }
    requireUsable(primary, primaryFields);
    requireUsable(foreign, foreignFields);
    if (!ddl::hasUniqueIndex(primary, primaryFields)) {
      throw Error(err::dbNoUniqueIndex, "Relation '" + relation.name + "' needs a unique index of table '" +
                                            primary.name + "' on the fields that it refers to");
    }
    // Most tables of a new database are empty, and that is quicker to find out.
    if (open.connection.number(ddl::anyRow(foreign.name)) != 0 &&
        open.connection.number(violation(exact)) != 0) {
      throw Error(err::dbRelatedMissing, "Relation '" + relation.name + "' cannot be made: rows of table '" +
                                             foreign.name + "' refer to rows that table '" + primary.name +
                                             "' has not");
    }
    if (!ddl::hasIndexOn(foreign, foreignFields)) open.connection.run(ddl::createRelationIndex(exact));
    if (!session_->inTransaction) writeRelations({exact});
    open.catalog.add(exact);
    finish(step);
    if (session_->inTransaction) open.unwritten.push_back(std::move(exact));
  });
}

/// SQLite adds a constraint to a table only when it makes the table. A change of the schema's text leaves the
/// rows as they are; SQLite's documentation describes that way. SQLite then reads the schema again. Other
/// users do so, too, since the version of the schema has changed.
void SqliteDatabase::writeSchema(const std::function<void(Connection&)>& write) const {
  OpenFile& open = opened();
  open.connection.allowSchemaWrites(true);
  try {
    write(open.connection);
  } catch (...) {
    open.connection.allowSchemaWrites(false);
    throw;
  }
  open.connection.allowSchemaWrites(false);
  const std::int64_t version = open.connection.number("PRAGMA schema_version");
  open.connection.run("PRAGMA schema_version=" + std::to_string(version + 1));
  open.connection.run("PRAGMA writable_schema=RESET");
  open.catalog.versionChanged();
}

void SqliteDatabase::writeRelations(const std::vector<Relation>& relations) const {
  writeSchema([&](Connection& connection) {
    Statement append = connection.prepare(
        "UPDATE sqlite_schema SET sql = substr(sql, 1, length(sql) - 1) || ?1 WHERE type = 'table' AND name "
        "= ?2");
    std::string constraints;
    for (auto relation = relations.begin(); relation != relations.end(); ++relation) {
      constraints += ", " + ddl::foreignKey(*relation);
      const auto next = relation + 1;
      if (next != relations.end() && next->foreignTable == relation->foreignTable) continue;
      const Value end = std::exchange(constraints, {}) + ")";
      const Value table = relation->foreignTable;
      append.bind(1, end);
      append.bind(2, table);
      const int code = append.step();
      if (code != SQLITE_DONE) connection.fail(code);
      append.reset();
    }
  });
}

std::vector<QueryDef> SqliteDatabase::queries() const {
  return session_->guarded([&] {
    Connection& connection = file().connection;
    Statement rows =
        connection.prepare(std::string("SELECT Name, Sql FROM ") + Catalog::queryTable + " ORDER BY rowid");
    std::vector<QueryDef> found;
    int code = SQLITE_ROW;
    while ((code = rows.step()) == SQLITE_ROW) {
      found.push_back({std::string(rows.text(0)), std::string(rows.text(1))});
    }
    if (code != SQLITE_DONE) connection.fail(code);
    return found;
  });
}

void SqliteDatabase::createQuery(const QueryDef& query) {
  session_->guarded([&] {
    OpenFile& open = opened();
    ddl::checkName(query.name);
    beginChange();
    Step step(open.connection);
    if (textOfName(query.name)) {
      throw Error(err::dbObjectExists, "A table or query '" + query.name + "' exists already");
    }
    open.connection.run(std::string("INSERT INTO ") + Catalog::queryTable + " (Name, Sql) VALUES (" +
                        ddl::quoteText(query.name) + ", " + ddl::quoteText(query.sql) + ")");
    step.release();
  });
}

}  // namespace voxa
