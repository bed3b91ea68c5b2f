#include "engines/jet_file/temporary_copy.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "engines/sqlite/engine.h"
#include "platform/database/database.h"
#include "platform/error.h"

namespace voxa::jet {

namespace {

/// The table with room for any value that a file can have in it.
TableDef relaxed(TableDef table) {
  for (FieldDef& field : table.fields) {
    const bool text = isText(field.type);
    const DataType type = text                   ? DataType::Memo
                          : isBinary(field.type) ? DataType::LongBinary
                          : isReal(field.type)   ? DataType::Double
                                                 : field.type;
    field = {.name = field.name, .type = type, .allowZeroLength = text};
  }
  for (IndexDef& index : table.indexes) index = {index.name, index.fields};
  return table;
}

/// Whether the column would make another value of it.
bool changes(const FieldDef& field, const Value& value) {
  if (field.autoIncrement) return value.isNull();
  return field.type == DataType::Currency && !value.isNull() &&
         toCurrency(value.toDouble()) != value.toDouble();
}

/// Makes the table and fills it. The error of the first row that it does not take.
std::optional<Error> makeTable(Database& database, const TableDef& table, const TemporaryCopy::Rows& rows) {
  database.createTable(table);
  const auto insert = database.prepare(insertionOf(table.name, table.fieldNames()));
  std::optional<Error> failure;
  std::vector<Value> row(table.fields.size());
  rows(table, [&](const Value* given) {
    row.assign(given, given + table.fields.size());
    try {
      for (std::size_t i = 0; i < row.size(); ++i) {
        if (changes(table.fields[i], row[i]))
          throw Error(err::overflow, "A value of '" + table.fields[i].name + "' would be changed");
      }
      (void)insert->execute(row);
    } catch (const Error& error) {
      if (error.number() == err::dbDiskFull) throw;
      failure = error;
    }
    return !failure;
  });
  return failure;
}

/// Makes and fills the table if its definition can be had. Otherwise the error that says why not.
std::optional<Error> tryTable(Database& database, const TableDef& table, const TemporaryCopy::Rows& rows) {
  bool reading = false;  // then an error is the file's, not the definition's
  try {
    return makeTable(database, table, [&](const TableDef& of, const auto& visit) {
      reading = true;
      rows(of, visit);
    });
  } catch (const Error& error) {
    if (reading) throw;
    return error;
  }
}

void removeTable(Database& database, const std::string& name) {
  const auto names = database.tableNames();
  if (std::find(names.begin(), names.end(), name) != names.end()) database.deleteTable(name);
}

void copyTable(Database& database, const TableDef& table, const TemporaryCopy::Rows& rows,
               const std::function<void(const std::string&)>& note) {
  if (!tryTable(database, table, rows)) return;
  removeTable(database, table.name);
  const auto failure = tryTable(database, relaxed(table), rows);
  if (!failure) return;
  removeTable(database, table.name);  // nobody takes a part of its rows for all
  note("Table '" + table.name + "' cannot be used in statements: " + failure->description());
}

}  // namespace

TemporaryCopy::TemporaryCopy(const Clock& clock, const Catalogue& catalogue, const Rows& rows,
                             const std::function<void(const std::string&)>& note) {
  try {
    folder_.emplace("voxa-jet-");
  } catch (const Error& error) {
    throw Error(err::dbCannotOpen, error.description());
  }
  fill(clock, catalogue, rows, note);
}

void TemporaryCopy::fill(const Clock& clock, const Catalogue& catalogue, const Rows& rows,
                         const std::function<void(const std::string&)>& note) const {
  // An engine of its own: the caller's may be in a transaction.
  const auto engine = makeSqliteEngine(clock);
  const auto database = engine->create(path());
  Transaction transaction(*engine);
  for (const TableDef& table : catalogue.tables) copyTable(*database, table, rows, note);
  for (const QueryDef& query : catalogue.queries) {
    try {
      database->createQuery(query);
    } catch (const Error& error) {
      note("Query '" + query.name + "' cannot be used in statements: " + error.description());
    }
  }
  transaction.commit();
  database->close();
}

}  // namespace voxa::jet
