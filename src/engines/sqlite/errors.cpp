#include "engines/sqlite/errors.h"

#include <sqlite3.h>

#include <algorithm>
#include <cerrno>

#include "engines/sqlite/catalog.h"
#include "engines/sqlite/ddl.h"
#include "platform/text.h"

namespace voxa {

namespace {

std::string quoted(std::string_view name) {
  return "'" + std::string(name) + "'";
}

/// A column in the form of SQLite's messages: "Table.Field".
struct ColumnName {
  std::string table;
  std::string field;
};

ColumnName splitColumn(std::string_view text) {
  const std::size_t dot = text.find('.');
  if (dot == std::string_view::npos) return {"", std::string(text)};
  return {std::string(text.substr(0, dot)), std::string(text.substr(dot + 1))};
}

/// The text behind "... constraint failed: ".
std::string_view subject(std::string_view text) {
  const std::size_t colon = text.find(": ");
  return colon == std::string_view::npos ? std::string_view() : text.substr(colon + 2);
}

bool sameFields(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), equalNoCase);
}

Error duplicate(std::string_view text, const Catalog& catalog) {
  std::vector<std::string> fields;
  std::string table;
  for (std::string_view rest = subject(text); !rest.empty();) {
    const std::size_t comma = std::min(rest.find(", "), rest.size());
    ColumnName column = splitColumn(rest.substr(0, comma));
    table = column.table;
    fields.push_back(std::move(column.field));
    rest.remove_prefix(std::min(comma + 2, rest.size()));
  }
  std::string where = "an index";
  if (const TableDef* definition = catalog.table(table)) {
    for (const IndexDef& index : definition->indexes) {
      if (!sameFields(index.fields, fields)) continue;
      where = (index.primary ? "the primary key " : "index ") + quoted(index.name);
      break;
    }
  }
  return {err::dbDuplicate,
          "The changes would create duplicate values in " + where + " of table " + quoted(table)};
}

Error nullValue(std::string_view text, const Catalog& catalog) {
  const ColumnName column = splitColumn(subject(text));
  if (const TableDef* definition = catalog.table(column.table)) {
    for (const IndexDef& index : definition->indexes) {
      if (!index.required) continue;
      for (const std::string& field : index.fields) {
        if (!equalNoCase(field, column.field)) continue;
        return {err::dbNullKey, "Field " + quoted(column.field) + " of table " + quoted(column.table) +
                                    " cannot be empty: index " + quoted(index.name) + " needs its value"};
      }
    }
  }
  return {err::dbRequired,
          "Field " + quoted(column.field) + " of table " + quoted(column.table) + " needs a value"};
}

Error checkFailed(std::string_view text, std::string_view table) {
  const std::string_view name = subject(text);
  const std::string field = quoted(splitColumn(name).field.empty() ? name : name.substr(0, name.find('.')));
  if (const auto rule = ddl::ruleOfCheck(name)) {
    return {err::dbValidationRule, "The value of field " + field + " of table " + quoted(table) +
                                       " breaks its validation rule: " + *rule};
  }
  return {err::dbZeroLength,
          "Field " + field + " of table " + quoted(table) + " cannot be a text without characters"};
}

/// The names of the tables that a table has relations with, for a sentence.
std::string related(std::string_view table, bool tableIsPrimary, const Catalog& catalog) {
  std::vector<std::string> names;
  for (const Relation& relation : catalog.relations()) {
    const std::string& own = tableIsPrimary ? relation.table : relation.foreignTable;
    const std::string& other = quoted(tableIsPrimary ? relation.foreignTable : relation.table);
    if (equalNoCase(own, table) && std::find(names.begin(), names.end(), other) == names.end()) {
      names.push_back(other);
    }
  }
  std::string list = names.empty() ? "a related table" : "table ";
  for (std::size_t i = 0; i < names.size(); ++i) list += (i == 0 ? "" : " or ") + names[i];
  return list;
}

}  // namespace

Error constraintFailure(int code, const std::string& text, std::string_view table, const Catalog& catalog) {
  switch (code) {
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:
      return duplicate(text, catalog);
    case SQLITE_CONSTRAINT_NOTNULL:
      return nullValue(text, catalog);
    case SQLITE_CONSTRAINT_CHECK:
      return checkFailed(text, table);
    case SQLITE_CONSTRAINT_TRIGGER:  // SQLite takes the RESTRICT side of a relation for a trigger
      return {err::dbRelatedExists, "The record of table " + quoted(table) +
                                        " cannot be deleted or changed because related records exist in " +
                                        related(table, true, catalog)};
    case SQLITE_CONSTRAINT_FOREIGNKEY:
      return {err::dbRelatedMissing,
              "The record of table " + quoted(table) +
                  " cannot be added or changed because a related record is required in " +
                  related(table, false, catalog)};
    default:
      return {err::dbInvalidArgument, "The change of table " + quoted(table) + " was refused: " + text};
  }
}

Error fileFailure(int code, const std::string& text, const std::string& path) {
  const auto make = [&](int number, const char* sentence) {
    return Error(number, std::string(sentence) + ": " + path);
  };
  if (code == SQLITE_READONLY_DIRECTORY || code == SQLITE_READONLY_CANTINIT) {
    return make(err::dbCannotOpen, "The database cannot be written because its folder is read-only");
  }
  if (code == SQLITE_READONLY_ROLLBACK || code == SQLITE_READONLY_RECOVERY) {
    return make(err::dbNotUpdatable,
                "A change of the database was broken off, and is undone when it is opened for writing");
  }
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return make(err::dbLocked, "The database is locked by another user");
    case SQLITE_READONLY:
      return make(err::dbNotUpdatable, "The database is read-only");
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return make(err::dbCannotOpen, "The database or its journal cannot be opened");
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      return make(err::dbNotADatabase, "The file is damaged or no database of this system");
    case SQLITE_FULL:
      return make(err::dbDiskFull, "Not enough space on disk");
    case SQLITE_IOERR:
      return Error(err::deviceIo, "The database could not be read or written (" + text + "): " + path);
    case SQLITE_NOMEM:
      return Error(err::outOfMemory, "Out of memory");
    default:
      // The first is the limit of SQLite's parser, the second that of its tree.
      if (text == "parser stack overflow" || text.starts_with("Expression tree is too large")) {
        return Error(err::dbSyntax, "The statement is nested too deeply");
      }
      if (text == "integer overflow") return Error(err::overflow, "Overflow: the sum is too large");
      return Error(err::dbInvalidArgument, "The database refused the call: " + text);
  }
}

}  // namespace voxa
