#include "platform/database/sqlite/sqlite_database.h"

#include <algorithm>

#include "platform/database/sqlite/ddl.h"
#include "platform/database/sqlite/errors.h"
#include "platform/database/sqlite/sqlite_recordset.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// Times that a statement is translated again because another user keeps changing the schema.
constexpr int schemaRetries = 20;

const Value& parameterValue(const SqliteDatabase::Parameters& parameters, std::string_view name) {
  for (const auto& [given, value] : parameters) {
    if (equalNoCase(given, name)) return value;
  }
  throw Error(err::dbTooFewParameters, "Parameter '" + std::string(name) + "' has no value");
}

/// Whether convertForField would give the value back.
bool isStoredAsIs(const Value& value, const FieldDef& field) {
  if (const auto* text = std::get_if<std::string>(&value.data())) {
    // No text has more characters than bytes.
    return field.type == DataType::Memo ||
           (field.type == DataType::Text && text->size() <= static_cast<std::size_t>(field.size));
  }
  return field.type == DataType::Long && std::holds_alternative<std::int32_t>(value.data());
}

std::string_view trimmedName(std::string_view name) {
  while (!name.empty() && (name.front() == ' ' || name.front() == '[')) name.remove_prefix(1);
  while (!name.empty() && (name.back() == ' ' || name.back() == ']')) name.remove_suffix(1);
  return name;
}

}  // namespace

SqliteDatabase::SqliteDatabase(std::shared_ptr<Session> session, std::string path)
    : session_(std::move(session)), path_(std::move(path)), file_(std::in_place, path_, *session_) {
  // Reads the file's first pages, so that a damaged or locked file fails here.
  (void)file_->catalog.relations();
  if (session_->inTransaction) file_->connection.run("BEGIN");
  session_->open.push_back(this);
}

SqliteDatabase::~SqliteDatabase() {
  try {
    close();
  } catch (const Error&) {
    abandon();  // no one is left to tell; the error collection has it
  }
}

void SqliteDatabase::close() {
  if (!isOpen()) return;
  session_->guarded([&] {
    settle();
    if (file_->connection.inTransaction()) file_->connection.run("COMMIT");
  });
  abandon();
}

void SqliteDatabase::abandon() {
  file_.reset();
  std::erase(session_->open, this);
}

void SqliteDatabase::rolledBack() {
  ++generation_;
  if (!file_) return;
  file_->relationsUnread = false;
  file_->catalog.invalidate();
  file_->names.clear();
}

SqliteDatabase::OpenFile& SqliteDatabase::opened() const {
  if (!file_) throw Error(err::dbInvalidObject, "The database is closed: " + path_);
  return *file_;
}

SqliteDatabase::OpenFile& SqliteDatabase::file() const {
  OpenFile& open = opened();
  if (open.relationsUnread) readRelations(open);
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

std::optional<std::string> SqliteDatabase::textOfName(std::string_view name) {
  OpenFile& open = opened();
  open.catalog.refresh();
  const std::string_view plain = trimmedName(name);
  if (const TableDef* table = open.catalog.table(plain)) return "SELECT * FROM [" + table->name + "]";
  Statement& query = rowStatement(std::string("SELECT Sql FROM ") + Catalog::queryTable + " WHERE Name = ?1");
  const Value key(plain);
  query.bind(1, key);
  const int code = query.step();
  if (code == SQLITE_DONE) {
    query.reset();
    return std::nullopt;
  }
  if (code != SQLITE_ROW) open.connection.fail(code);
  std::string sql(query.text(0));
  query.reset();
  return sql;
}

Prepared& SqliteDatabase::translate(std::string_view sql) {
  OpenFile& open = file();
  open.catalog.refresh();
  auto translation = std::make_shared<const dialect::Translation>(dialect::translate(sql, open.catalog));
  Statement statement = open.connection.prepareForSchema(translation->sql);
  return open.translated.add(scanned_.key, {std::move(translation), std::move(statement)});
}

Prepared& SqliteDatabase::prepared(std::string_view source) {
  OpenFile& open = file();
  std::optional<Error> unscannable;
  try {
    dialect::scan(source, scanned_);
    if (Prepared* found = open.translated.find(scanned_.key)) return *found;
  } catch (const Error& error) {
    unscannable = error;  // a name may hold what a statement may not
  }
  auto name = open.names.find(std::string(source));
  if (name == open.names.end()) {
    std::optional<std::string> text = textOfName(source);
    if (!text) {
      if (unscannable) throw *unscannable;
      return translate(source);
    }
    name = open.names.emplace(source, std::move(*text)).first;
  }
  dialect::scan(name->second, scanned_);
  if (Prepared* found = open.translated.find(scanned_.key)) return *found;
  return translate(name->second);
}

void SqliteDatabase::bind(Prepared& prepared, const Parameters& parameters) {
  const dialect::Translation& translation = *prepared.translation;
  converted_.clear();  // each value twice at most, and what was bound must stay where it is
  converted_.reserve(2 * translation.slots.size());
  const auto convert = [&](const Value& value, const FieldDef& field) -> const Value& {
    if (isStoredAsIs(value, field)) return value;
    return converted_.emplace_back(convertForField(value, field.type, field.size));
  };
  int index = 0;
  for (const dialect::Slot& slot : translation.slots) {
    const Value* value = nullptr;
    if (slot.literal) {
      value = &scanned_.literals[*slot.literal];
    } else {
      value = &parameterValue(parameters, slot.parameter);
      for (const FieldDef& declared : translation.parameters) {
        if (!equalNoCase(declared.name, slot.parameter)) continue;
        value = &convert(*value, declared);
        break;
      }
    }
    if (slot.convertTo) value = &convert(*value, *slot.convertTo);
    prepared.statement.bind(++index, *value);
  }
}

template <typename Run>
int SqliteDatabase::withPrepared(std::string_view source, bool rows, const Parameters& parameters,
                                 Run&& run) {
  for (int attempt = 0;; ++attempt) {
    Prepared& statement = prepared(source);
    if (rows != (statement.translation->kind == dialect::Translation::Kind::select)) {
      if (rows) throw Error(err::dbInvalidOperation, "A query that changes rows has no rows to open");
      throw Error(err::dbSelectExecuted, "A query that selects rows cannot be executed");
    }
    bind(statement, parameters);
    const int code = run(statement);
    if ((code & 0xff) != SQLITE_SCHEMA || attempt == schemaRetries) return code;
    schemaChanged();
  }
}

int SqliteDatabase::execute(std::string_view sql) {
  return session_->guarded([&] {
    std::shared_ptr<const dialect::Translation> translation;
    const int code = withPrepared(sql, false, {}, [&](Prepared& prepared) {
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
    return file().connection.changes();
  });
}

std::unique_ptr<Recordset> SqliteDatabase::openRecordset(std::string_view source,
                                                         const Parameters& parameters) {
  return session_->guarded([&] {
    std::unique_ptr<SqliteRecordset> rows;
    const int code = withPrepared(source, true, parameters, [&](Prepared& prepared) {
      rows = std::make_unique<SqliteRecordset>(shared_from_this(), prepared.translation);
      return rows->read(prepared.statement);
    });
    if (code != SQLITE_DONE) file().connection.fail(code);
    return std::unique_ptr<Recordset>(std::move(rows));
  });
}

std::size_t preparedStatements(const Database& database) {
  return dynamic_cast<const SqliteDatabase&>(database).connection().preparedCount();
}

}  // namespace voxa
