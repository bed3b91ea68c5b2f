#include "engines/sqlite/sqlite_database.h"

#include <algorithm>

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/errors.h"
#include "engines/sqlite/sqlite_recordset.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// So many times a statement is translated again because another user keeps changing the schema.
constexpr int schemaRetries = 20;

/// A statement whose text is read once and holds for as long as the database is open.
class SqliteCommand final : public Command {
 public:
  SqliteCommand(std::shared_ptr<SqliteDatabase> database, std::string_view sql)
      : database_(std::move(database)), sql_(sql), change_(database_->translateChange(sql_)) {}

  int execute(const std::vector<Value>& values) override { return database_->run(change_, sql_, values); }

 private:
  std::shared_ptr<SqliteDatabase> database_;
  std::string sql_;
  SqliteDatabase::Owned change_;
};

/// The value for a slot, and, for a parameter, its declaration.
using Input = std::pair<const Value*, const FieldDef*>;

/// rows: whether the statement must give rows.
void requireKind(const dialect::Translation& translation, bool rows) {
  if (rows == (translation.kind == dialect::Translation::Kind::select)) return;
  if (rows) throw Error(err::dbInvalidOperation, "A statement that makes changes has no rows to open");
  throw Error(err::dbSelectExecuted, "A query that selects rows cannot be executed");
}

/// Which declared parameter a slot stands for. The translation makes slots for declared ones only.
std::size_t declaredIndex(const dialect::Translation& translation, std::string_view name) {
  const auto found = std::find_if(translation.parameters.begin(), translation.parameters.end(),
                                  [&](const FieldDef& declared) { return equalNoCase(declared.name, name); });
  return static_cast<std::size_t>(found - translation.parameters.begin());
}

bool isDeclared(const dialect::Translation& translation, const FieldDef& parameter) {
  return &parameter < translation.parameters.data() + translation.declared;
}

[[noreturn]] void failUndeclared(const std::string& name) {
  throw Error(err::dbTooFewParameters,
              "Too few parameters: \"" + name + "\" is neither a field nor a parameter");
}

const Value& parameterValue(const SqliteDatabase::Parameters& parameters, std::string_view name,
                            bool declared) {
  for (const auto& [given, value] : parameters) {
    if (equalNoCase(given, name)) return value;
  }
  if (!declared) failUndeclared(std::string(name));
  throw Error(err::dbTooFewParameters, "Parameter '" + std::string(name) + "' has no value");
}

/// What goes into a slot of a statement that is run with its literals and with values for its parameters.
Input inputOf(const dialect::Translation& translation, std::size_t index, const std::vector<Value>& literals,
              const SqliteDatabase::Parameters& parameters) {
  const dialect::Slot& slot = translation.slots[index];
  if (slot.literal) return {&literals[*slot.literal], nullptr};
  if (slot.constant) return {&*slot.constant, nullptr};
  const FieldDef& parameter = translation.parameters[declaredIndex(translation, slot.parameter)];
  return {&parameterValue(parameters, slot.parameter, isDeclared(translation, parameter)), &parameter};
}

/// The value of a slot that is no parameter; nullptr for one that is.
const Value* ownedLiteral(const SqliteDatabase::Owned& owned, std::size_t index) {
  const dialect::Slot& slot = owned.prepared.translation->slots[index];
  if (slot.literal) return &owned.literals[*slot.literal];
  return slot.constant ? &*slot.constant : nullptr;
}

/// Whether convertForField would return the same value.
bool isStoredAsIs(const Value& value, const FieldDef& field) {
  if (const auto* text = std::get_if<std::string>(&value.data())) {
    // A text never has more characters than bytes.
    return field.type == DataType::Memo ||
           (field.type == DataType::Text && text->size() <= static_cast<std::size_t>(field.size));
  }
  return field.type == DataType::Long && std::holds_alternative<std::int32_t>(value.data());
}

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

template <typename InputOf>
void SqliteDatabase::bind(Statement& statement, const dialect::Translation& translation, InputOf&& inputOf) {
  const std::vector<dialect::Slot>& slots = translation.slots;
  converted_.clear();  // room for two values a slot, since bound values must not move
  converted_.reserve(2 * slots.size());
  const auto convert = [&](const Value& value, const FieldDef& field) -> const Value& {
    if (isStoredAsIs(value, field)) return value;
    return converted_.emplace_back(convertForField(value, field.type, field.size, &session_->clock));
  };
  for (std::size_t i = 0; i < slots.size(); ++i) {
    const auto [input, declared] = inputOf(i);
    const Value* value = input;
    // What no declaration tells is what it stands beside.
    const bool told = declared != nullptr && (isDeclared(translation, *declared) || !slots[i].convertTo);
    if (told) value = &convert(*value, *declared);
    if (slots[i].convertTo) value = &convert(*value, *slots[i].convertTo);
    statement.bind(static_cast<int>(i) + 1, *value);
  }
}

SqliteDatabase::Owned SqliteDatabase::translateChange(std::string_view sql) {
  Prepared made = translate(sql);
  dialect::scan(sql, scanned_, &session_->clock);
  Owned change{std::move(made), scanned_.literals, {}};
  const dialect::Translation& translation = *change.prepared.translation;
  requireKind(translation, false);
  using Kind = dialect::Translation::Kind;
  if (translation.kind == Kind::into || translation.kind == Kind::definition)
    throw Error(err::dbInvalidOperation, "A statement that makes or changes a table cannot be prepared");
  for (const dialect::Slot& slot : translation.slots) {
    change.parameters.push_back(slot.literal || slot.constant ? 0
                                                              : declaredIndex(translation, slot.parameter));
  }
  return change;
}

SqliteDatabase::Owned SqliteDatabase::translateTest(std::string_view text,
                                                    const std::vector<FieldDef>& columns) {
  OpenFile& open = file();
  const ReadTogether look(open.connection);
  open.catalog.refresh();
  dialect::scan(text, scanned_, &session_->clock);
  dialect::RowTest test = dialect::translateRowTest(text, columns, open.catalog);
  if (!test.translation.parameters.empty()) failUndeclared(test.translation.parameters[0].name);
  Statement statement = open.connection.prepareForSchema(test.translation.sql);
  Prepared prepared{std::make_shared<const dialect::Translation>(std::move(test.translation)),
                    std::move(statement)};
  Owned out{std::move(prepared), scanned_.literals, {}, std::move(test.descending)};
  for (std::size_t i = 0; i < columns.size(); ++i) out.parameters.push_back(i);
  return out;
}

Statement& SqliteDatabase::bindRow(Owned& test, const Value* row) {
  bind(test.prepared.statement, *test.prepared.translation, [&](std::size_t i) -> Input {
    return {i < test.parameters.size() ? row + i : ownedLiteral(test, i), nullptr};
  });
  return test.prepared.statement;
}

int SqliteDatabase::run(Owned& change, std::string_view sql, const std::vector<Value>& values) {
  return session_->guarded([&] {
    beginChange();
    for (int attempt = 0;; ++attempt) {
      OpenFile& open = file();
      const dialect::Translation& translation = *change.prepared.translation;
      if (values.size() < translation.parameters.size() && values.size() >= translation.declared)
        failUndeclared(translation.parameters[values.size()].name);
      if (values.size() != translation.parameters.size()) {
        throw Error(err::dbTooFewParameters,
                    "The statement has " + std::to_string(translation.parameters.size()) +
                        " parameters and was given " + std::to_string(values.size()) + " values");
      }
      bind(change.prepared.statement, translation, [&](std::size_t i) -> Input {
        if (const Value* literal = ownedLiteral(change, i)) return {literal, nullptr};
        const std::size_t parameter = change.parameters[i];
        return {&values[parameter], &translation.parameters[parameter]};
      });
      const int code = change.prepared.statement.step();
      if (code == SQLITE_DONE) {
        change.prepared.statement.reset();
        ++generation_;
        return open.connection.changes();
      }
      if ((code & 0xff) != SQLITE_SCHEMA || attempt == schemaRetries) failChange(code, translation.table);
      schemaChanged();
      change = translateChange(sql);
    }
  });
}

std::unique_ptr<Command> SqliteDatabase::prepare(std::string_view sql) {
  return session_->guarded(
      [&] { return std::unique_ptr<Command>(std::make_unique<SqliteCommand>(shared_from_this(), sql)); });
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
