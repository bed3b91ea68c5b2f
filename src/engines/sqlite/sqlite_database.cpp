#include "engines/sqlite/sqlite_database.h"

#include <algorithm>

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/errors.h"
#include "engines/sqlite/sqlite_recordset.h"
#include "engines/sqlite/statement_inputs.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// The statement that gives only the row numbers of a result. It names the columns that it does not read, so
/// that SQLite goes the same way through the table, and the rows come in the same order.
std::string numbersSql(const dialect::Translation& translation) {
  const std::string& sql = translation.sql;
  const std::size_t first = std::string_view("SELECT ").size();
  return "SELECT coalesce(" + sql.substr(first, translation.columnsEnd - first) + ")" +
         sql.substr(translation.columnsEnd);
}

/// A statement that stands at a row keeps the file as it is until it is reset.
struct Standing {
  Statement& statement;
  ~Standing() { statement.reset(); }
};

}  // namespace

SqliteDatabase::SqliteDatabase(std::shared_ptr<Session> session, std::string path, Connection connection)
    : session_(std::move(session)),
      path_(std::move(path)),
      file_(std::in_place, std::move(connection), *session_) {
  // Reads the first pages of the file, so that a damaged or locked file fails here.
  (void)file_->catalog.relations();
  session_->open.push_back(this);
}

SqliteDatabase::~SqliteDatabase() {
  try {
    close();
  } catch (const Error&) {
    abandon();  // nobody is left to tell; the error collection has it
  }
}

void SqliteDatabase::close() {
  if (!isOpen()) return;
  session_->guarded([&] { settle(); });
  // Who closes a file within a transaction does not end it.
  if (file_->locked) session_->closed.push_back({path_, std::move(file_->connection)});
  abandon();
}

void SqliteDatabase::abandon() {
  file_.reset();
  std::erase(session_->open, this);
}

void SqliteDatabase::commit() {
  if (!opened().locked) return;
  file_->connection.run("COMMIT");
  file_->locked = false;
  letGo();
}

void SqliteDatabase::rollback() {
  OpenFile& open = opened();
  const bool running = open.locked && open.connection.inTransaction();
  open.locked = false;
  ++generation_;
  open.unwritten.clear();
  open.catalog.invalidate();
  open.names.clear();
  if (running) open.connection.run("ROLLBACK");
  letGo();
}

SqliteDatabase::OpenFile& SqliteDatabase::opened() const {
  if (!file_) throw Error(err::dbInvalidObject, "The database is closed: " + path_);
  return *file_;
}

SqliteDatabase::OpenFile& SqliteDatabase::file() const {
  OpenFile& open = opened();
  if (!open.unwritten.empty()) {
    Step step(open.connection);
    writeRelations(open.unwritten);
    step.release();
    open.unwritten.clear();
  }
  return open;
}

void SqliteDatabase::schemaChanged() {
  file().catalog.invalidate();
  file().translated.clear();
  file().names.clear();
}

Statement& SqliteDatabase::rowStatement(const std::string& sql) {
  OpenFile& open = opened();
  if (Prepared* found = open.own.find(sql)) return found->statement;
  return open.own.add(sql, {nullptr, open.connection.prepare(sql)}).statement;
}

void SqliteDatabase::beginReading() {
  session_->guarded([&] { file().connection.beginReading(); });
}

void SqliteDatabase::endReading() {
  if (file_) file_->connection.endReading();
}

void SqliteDatabase::lockForChanges() {
  session_->guarded([&] {
    if (session_->inTransaction) beginChange();
  });
}

void SqliteDatabase::beginChange() {
  OpenFile& open = opened();
  open.connection.endReading();
  if (open.locked) return;
  open.connection.giveWay();
  if (!session_->inTransaction) return;
  open.connection.run("BEGIN IMMEDIATE");
  open.locked = true;
  ++generation_;  // others may have changed the rows that were read before
}

void SqliteDatabase::change(Statement& statement, std::string_view table) {
  settle();
  const int code = statement.step();
  if (code != SQLITE_DONE) failChange(code, table);
  statement.reset();
  ++generation_;
}

void SqliteDatabase::failChange(int code, std::string_view table) {
  OpenFile& open = file();
  if ((code & 0xff) != SQLITE_CONSTRAINT) open.connection.fail(code);
  const std::string text = open.connection.message();
  throw constraintFailure(code, text, table, open.catalog);
}

template <typename Run>
int SqliteDatabase::withPrepared(std::string_view source, bool rows, const Parameters& parameters,
                                 Run&& run) {
  for (int attempt = 0;; ++attempt) {
    Prepared& statement = prepared(source);
    const dialect::Translation& translation = *statement.translation;
    requireKind(translation, rows);
    const auto bindTo = [&](Statement& bound) {
      bind(bound, translation,
           [&](std::size_t i) { return inputOf(translation, i, scanned_.literals, parameters); });
    };
    bindTo(statement.statement);
    const int code = run(statement, bindTo);
    if ((code & 0xff) != SQLITE_SCHEMA || attempt == schemaRetries) return code;
    schemaChanged();
  }
}

int SqliteDatabase::execute(std::string_view sql, const Parameters& parameters) {
  return session_->guarded([&] {
    beginChange();
    std::shared_ptr<const dialect::Translation> translation;
    bool defined = false;
    const int code = withPrepared(sql, false, parameters, [&](Prepared& prepared, const auto& /*bindTo*/) {
      if (prepared.translation->kind == dialect::Translation::Kind::definition) {
        const auto named = opened().names.find(std::string(sql));
        define(std::string(named == opened().names.end() ? sql : std::string_view(named->second)));
        defined = true;
        return SQLITE_DONE;
      }
      if (prepared.translation->kind == dialect::Translation::Kind::into) {
        const auto kept = prepared.translation;  // the cache goes with the schema
        const std::vector<Value> literals = scanned_.literals;
        return makeTable(*kept, [&](Statement& insert) {
          bind(insert, *kept, [&](std::size_t i) { return inputOf(*kept, i, literals, parameters); });
        });
      }
      const int result = prepared.statement.step();
      if (result == SQLITE_DONE) {
        prepared.statement.reset();
      } else {
        translation = prepared.translation;
      }
      return result;
    });
    if (code != SQLITE_DONE) failChange(code, translation->table);
    ++generation_;
    return defined ? 0 : file().connection.changes();
  });
}

template <typename Make>
void SqliteDatabase::read(std::string_view source, const Parameters& parameters, Make&& make) {
  const int code = withPrepared(source, true, parameters, [&](Prepared& prepared, const auto& bindTo) {
    ResultRows& rows = make(prepared.translation);
    const int read = rows.read(prepared.statement);
    if (read != SQLITE_ROW) return read;
    const Standing standing{prepared.statement};
    if (!prepared.numbers)
      prepared.numbers = opened().connection.prepareForSchema(numbersSql(*prepared.translation));
    bindTo(*prepared.numbers);
    rows.readNumbers(*prepared.numbers);
    return SQLITE_DONE;
  });
  if (code != SQLITE_DONE) file().connection.fail(code);
}

void SqliteDatabase::visitRows(std::string_view source, const std::function<bool(const Value* row)>& visit,
                               const Parameters& parameters) {
  session_->guarded([&] {
    const int code = withPrepared(source, true, parameters, [&](Prepared& prepared, const auto& /*bindTo*/) {
      const Standing standing{prepared.statement};
      const dialect::Translation& translation = *prepared.translation;
      const int numbers = translation.table.empty() ? 0 : 1;
      std::vector<Value> row;
      int result = SQLITE_ROW;
      while ((result = prepared.statement.step()) == SQLITE_ROW) {
        row.clear();
        for (std::size_t i = 0; i < translation.columns.size(); ++i) {
          const bool fits =
              prepared.statement.take(numbers + static_cast<int>(i), translation.columns[i].type, row);
          if (!fits && translation.stored[i]) throw ResultRows::misfit(translation, i);
        }
        if (!visit(row.data())) return SQLITE_DONE;
      }
      return result;
    });
    if (code != SQLITE_DONE) file().connection.fail(code);
  });
}

std::shared_ptr<ResultRows> SqliteDatabase::readRows(std::string_view source, std::string_view shown,
                                                     const Parameters& parameters, bool frozen) {
  std::shared_ptr<ResultRows> rows;
  read(source, parameters, [&](const auto& translation) -> ResultRows& {
    rows = std::make_shared<ResultRows>(shared_from_this(), translation, shown, frozen);
    return *rows;
  });
  return rows;
}

std::unique_ptr<Recordset> SqliteDatabase::openRecordset(std::string_view source,
                                                         const Parameters& parameters, RowOptions options) {
  return session_->guarded([&] {
    std::unique_ptr<SqliteRecordset> rows;
    read(source, parameters, [&](const auto& translation) -> ResultRows& {
      rows = std::make_unique<SqliteRecordset>(shared_from_this(), translation, source, parameters, options);
      return rows->rows();
    });
    if (options.kind == RecordsetKind::table && !(rows->rows().editable() && isTable(source)))
      throw Error(err::dbInvalidOperation, "Only a table can be opened as table kind, by its name");
    rows->start();
    return std::unique_ptr<Recordset>(std::move(rows));
  });
}

std::size_t preparedStatements(const Database& database) {
  return dynamic_cast<const SqliteDatabase&>(database).connection().preparedCount();
}

}  // namespace voxa
