#include "work/transfer.h"

#include <algorithm>

#include "platform/observer.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// The statement's part behind FROM that gives the rows of the foreign side without a related one.
std::string orphansOf(const Relation& relation) {
  std::string join;
  std::string given;
  for (const auto& [primary, foreign] : relation.fields) {
    join += (join.empty() ? "" : " AND ") + ("f.[" + foreign + "] = p.[" + primary + "]");
    given += " AND f.[" + foreign + "] IS NOT NULL";
  }
  return " FROM [" + relation.foreignTable + "] AS f LEFT JOIN [" + relation.table + "] AS p ON (" + join +
         ") WHERE p.[" + relation.fields.front().first + "] IS NULL" + given;
}

class Transfer {
 public:
  Transfer(Database& from, Database& to, const OnRefused& refused, Observer& observer)
      : from_(from), to_(to), refused_(refused), observer_(observer) {}

  Transferred run() {
    const std::vector<std::string> tables = from_.tableNames();
    for (const std::string& table : tables) {
      const TableDef& definition = from_.tableDef(table);
      out_.tables.push_back(copyTable(from_, definition, to_, refused_, observer_));
      out_.indexes += definition.indexes.size();
    }
    for (const Relation& relation : from_.relations()) copyRelation(relation);
    for (const QueryDef& query : from_.queries()) copyQuery(to_, query, out_);
    if (const std::size_t version = from_.schemaVersion(); version != 0) to_.setSchemaVersion(version);
    return std::move(out_);
  }

 private:
  void copyRelation(const Relation& relation) {
    try {
      const std::size_t orphans = relate(to_, relation, refused_);
      const auto table = std::find_if(
          out_.tables.begin(), out_.tables.end(),
          [&](const TransferredTable& copied) { return equalNoCase(copied.table, relation.foreignTable); });
      if (table != out_.tables.end()) {
        table->refused += orphans;
        table->written -= orphans;
      }
      ++out_.relations;
    } catch (const Error& error) {
      if (error.number() != err::dbNoUniqueIndex) throw;
      out_.notes.push_back("The relation " + relation.name + " is not taken over: " + error.description());
    }
  }

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
TransferredTable copyTable(Database& from, const TableDef& definition, Database& to, const OnRefused& refused,
                           Observer& observer) {
  const auto isUnique = [](const IndexDef& index) { return index.unique || index.primary; };
  TableDef first = definition;
  std::erase_if(first.indexes, [&](const IndexDef& index) { return !isUnique(index); });
  to.createTable(first);
  std::vector<std::string> fields;
  for (const FieldDef& field : definition.fields) fields.push_back(field.name);
  TransferredTable done{definition.name};
  if (to.takeRows(from, definition.name)) {
    const TableDigest original = digestOf(from, definition.name, fields);
    requireSame(definition.name, original, digestOf(to, definition.name, fields));
    done.read = done.written = original.rows;
  } else {
    RowCopy copy(to, to.tableDef(definition.name), std::move(fields), refused);
    copyRows(from, definition.name, copy, observer);
    copy.compare();
    done.read = copy.read();
    done.written = copy.written().rows;
    done.refused = done.read - done.written;
  }
  for (const IndexDef& index : definition.indexes) {
    if (!isUnique(index)) to.addIndex(definition.name, index);
  }
  return done;
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

std::size_t relate(Database& database, const Relation& relation, const OnRefused& refused) {
  const std::string orphans = orphansOf(relation);
  const TableDef& foreign = database.tableDef(relation.foreignTable);
  std::vector<std::string> fields;
  for (const FieldDef& field : foreign.fields) fields.push_back(field.name);
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
  database.createRelation(relation);
  return found;
}

Transferred transfer(Database& from, DatabaseEngine& engine, Database& to, const OnRefused& refused,
                     Observer& observer) {
  Transaction transaction(engine, to);
  Transferred out = Transfer(from, to, refused, observer).run();
  transaction.commit();
  return out;
}

}  // namespace voxa
