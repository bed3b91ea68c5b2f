#include "work/transfer.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "platform/observer.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// The statement's part behind FROM that gives the rows of the foreign side without a related one.
std::string orphansOf(const Relation& relation) {
  std::string join;
  std::string given;
  for (const auto& [primary, foreign] : relation.fields) {
    if (!join.empty()) join += " AND ";
    join.append("f.[").append(foreign).append("] = p.[").append(primary).append("]");
    given.append(" AND f.[").append(foreign).append("] IS NOT NULL");
  }
  return " FROM [" + relation.foreignTable + "] AS f LEFT JOIN [" + relation.table + "] AS p ON (" + join +
         ") WHERE p.[" + relation.fields.front().first + "] IS NULL" + given;
}

/// Whether an error says that a definition cannot be kept here; others end the copy.
bool isAboutDefinition(const Error& error) {
  constexpr int ofDefinitions[] = {err::invalidArgument,   err::dbInvalidArgument,  err::dbTableExists,
                                   err::dbObjectExists,    err::dbSyntax,           err::dbUnknownTable,
                                   err::dbUnknownFunction, err::dbTooFewParameters, err::dbInvalidName,
                                   err::dbNotInCollection, err::dbNoUniqueIndex,    err::dbConversion,
                                   err::dbTypeMismatch,    err::dbDuplicateField,   err::dbInvalidFieldType};
  return std::find(std::begin(ofDefinitions), std::end(ofDefinitions), error.number()) !=
         std::end(ofDefinitions);
}

/// A name that this system takes, made of one that it does not.
std::string validName(const std::string& name) {
  std::string out;
  for (const char c : name) {
    const bool odd =
        static_cast<unsigned char>(c) < ' ' || std::string_view(".![]`{}").find(c) != std::string_view::npos;
    if (!out.empty() || c != ' ') out += odd ? '_' : c;
  }
  return out.starts_with("sqlite_") || out.empty() ? "_" + out : out;
}

void makeIndex(Database& to, const std::string& table, const IndexDef& index, Transferred& out) {
  ++out.indexes;
  try {
    to.addIndex(table, index);
  } catch (const Error& error) {
    if (error.number() != err::dbInvalidName) throw;
    IndexDef named = index;
    named.name = validName(index.name);
    to.addIndex(table, named);
    out.notes.push_back("The index " + index.name + " of " + table + " is called " + named.name + " here.");
  }
}

/// Makes a table with its unique indexes, as far as its definition can be kept here. Returns its name.
std::string makeTable(Database& to, const TableDef& definition, Transferred& out) {
  TableDef table = definition;
  std::erase_if(table.indexes, [](const IndexDef& index) { return !index.isUnique(); });
  try {
    to.createTable(table);
    out.indexes += table.indexes.size();
    return table.name;
  } catch (const Error& error) {
    if (!isAboutDefinition(error)) throw;
  }
  // Part by part, so that the one is known that cannot be kept.
  table.name = validName(definition.name);
  table.indexes.clear();
  for (FieldDef& field : table.fields) field.validationRule.clear();
  to.createTable(table);
  if (table.name != definition.name)
    out.notes.push_back("The table " + definition.name + " is called " + table.name + " here.");
  for (const FieldDef& field : definition.fields) {
    if (field.validationRule.empty()) continue;
    try {
      to.alterField(table.name, field);
    } catch (const Error& error) {
      if (!isAboutDefinition(error)) throw;
      out.notes.push_back("The rule " + field.validationRule + " of " + table.name + "." + field.name +
                          " is not taken over: " + error.description());
    }
  }
  for (const IndexDef& index : definition.indexes) {
    if (index.isUnique()) makeIndex(to, table.name, index, out);
  }
  return table.name;
}

/// Whether the primary side of a relation has the unique index that it needs.
bool hasKey(const Database& database, const Relation& relation) {
  const TableDef& primary = database.tableDef(relation.table);
  return std::any_of(primary.indexes.begin(), primary.indexes.end(), [&](const IndexDef& index) {
    return index.isUnique() && index.fields.size() == relation.fields.size() &&
           std::all_of(relation.fields.begin(), relation.fields.end(), [&](const auto& pair) {
             return std::any_of(index.fields.begin(), index.fields.end(),
                                [&](const std::string& field) { return equalNoCase(field, pair.first); });
           });
  });
}

/// Tells of the rows of the foreign side without a related one, and deletes them. Returns how many.
std::size_t deleteOrphans(Database& database, const Relation& relation, const OnRefused& refused) {
  const std::string orphans = orphansOf(relation);
  const TableDef& foreign = database.tableDef(relation.foreignTable);
  const std::vector<std::string> fields = foreign.fieldNames();
  std::size_t found = 0;
  database.visitRows("SELECT f.*" + orphans, [&](const Value* row) {
    const std::string key = keyOfRow(foreign, fields, row, ++found);
    refused({foreign.name,
             key,
             "it refers to a row that the table " + relation.table + " does not have",
             fields,
             {row, row + fields.size()}});
    return true;
  });
  if (found > 0) (void)database.execute("DELETE f.*" + orphans);
  return found;
}

class Transfer {
 public:
  Transfer(Database& from, Database& to, const OnRefused& refused, Observer& observer)
      : from_(from), to_(to), refused_(refused), observer_(observer) {}

  Transferred run() {
    const std::vector<std::string> tables = from_.tableNames();
    for (const std::string& table : tables) {
      copyTable(from_, from_.tableDef(table), to_, refused_, out_, observer_);
    }
    copyRelations(to_, from_.relations(), refused_, out_);
    for (const QueryDef& query : from_.queries()) copyQuery(to_, query, out_);
    if (const std::size_t version = from_.schemaVersion(); version != 0) to_.setSchemaVersion(version);
    return std::move(out_);
  }

 private:
  Database& from_;
  Database& to_;
  const OnRefused& refused_;
  Observer& observer_;
  Transferred out_;
};

}  // namespace

void failAtRow(const RefusedRow& row) {
  throw Error(err::dbConversion,
              "The row " + row.key + " of the table " + row.table + " is not taken: " + row.reason);
}

// The unique indexes exist before the rows, so that the row is known that breaks one; the others are made at
// once for all rows.
void copyTable(Database& from, const TableDef& definition, Database& to, const OnRefused& refused,
               Transferred& out, Observer& observer) {
  const std::string name = makeTable(to, definition, out);
  std::vector<std::string> fields = definition.fieldNames();
  TransferredTable done{name};
  if (name == definition.name && to.takeRows(from, name)) {
    const TableDigest original = digestOf(from, name, fields);
    requireSame(name, original, digestOf(to, name, fields));
    done.read = done.written = original.rows;
  } else {
    RowCopy copy(to, to.tableDef(name), std::move(fields), refused);
    copyRows(from, definition.name, copy, observer);
    copy.compare();
    done.read = copy.read();
    done.written = copy.written().rows;
    done.refused = done.read - done.written;
  }
  out.tables.push_back(done);
  for (const IndexDef& index : definition.indexes) {
    if (!index.isUnique()) makeIndex(to, name, index, out);
  }
}

void copyQuery(Database& to, const QueryDef& query, Transferred& done) {
  try {
    to.createQuery(query);
    ++done.queries;
  } catch (const Error& error) {
    if (error.number() != err::dbInvalidName && error.number() != err::dbObjectExists) throw;
    done.notes.push_back("The query " + query.name + " is not taken over: " + error.description());
  }
}

void copyRows(Database& from, const std::string& table, RowCopy& copy, Observer& observer) {
  from.visitRows("[" + table + "]", [&](const Value* row) {
    copy.write(row);
    observer.progress("Copying row", copy.read(), 0);
    return true;
  });
}

// No relation exists while rows without a related one go, so that none takes others along, or holds them. A
// row that goes can leave others alone: until there are none.
void copyRelations(Database& to, const std::vector<Relation>& relations, const OnRefused& refused,
                   Transferred& out) {
  const auto note = [&](const Relation& relation, const Error& error) {
    if (!isAboutDefinition(error)) throw error;
    out.notes.push_back("The relation " + relation.name + " from " + relation.table + " to " +
                        relation.foreignTable + " is not taken over: " + error.description());
  };
  std::vector<Relation> possible;
  for (const Relation& relation : relations) {
    try {
      if (hasKey(to, relation) &&
          to.tableDef(relation.foreignTable).field(relation.fields.at(0).second) != nullptr) {
        possible.push_back(relation);
      } else {
        throw Error(err::dbNoUniqueIndex, "its primary side has no unique index");
      }
    } catch (const Error& error) {
      note(relation, error);
    }
  }
  for (bool again = true; again;) {
    again = false;
    for (const Relation& relation : possible) {
      const std::size_t orphans = deleteOrphans(to, relation, refused);
      again = again || orphans > 0;
      for (TransferredTable& table : out.tables) {
        if (!equalNoCase(table.table, relation.foreignTable)) continue;
        table.refused += orphans;
        table.written -= orphans;
      }
    }
  }
  for (Relation& relation : possible) {
    try {
      to.createRelation(relation);
      ++out.relations;
    } catch (const Error& error) {
      note(relation, error);
    }
  }
}

Transferred transfer(Database& from, DatabaseEngine& engine, Database& to, const OnRefused& refused,
                     Observer& observer) {
  Transaction transaction(engine, to);
  Transferred out = Transfer(from, to, refused, observer).run();
  transaction.commit();
  return out;
}

}  // namespace voxa
