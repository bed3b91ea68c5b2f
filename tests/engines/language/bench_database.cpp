#include "engines/language/bench_database.h"

#include <sstream>

#include "engines/sqlite/errors.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa {

namespace {

DataType typeOf(char letter) {
  switch (letter) {
    case 'b':
      return DataType::Boolean;
    case 'y':
      return DataType::Byte;
    case 'i':
      return DataType::Integer;
    case 'l':
      return DataType::Long;
    case 'd':
      return DataType::Double;
    case 'D':
      return DataType::Date;
    case 'm':
      return DataType::Memo;
    default:
      return DataType::Text;
  }
}

std::string declaration(const FieldDef& field) {
  const std::string name = " \"" + field.name + "\" ";
  if (field.type == DataType::Text || field.type == DataType::Memo) return name + "TEXT COLLATE KORVA";
  if (field.type == DataType::Double || field.type == DataType::Date) return name + "REAL";
  return name + (field.type == DataType::Boolean ? "INTEGER NOT NULL DEFAULT 0" : "INTEGER");
}

}  // namespace

BenchDatabase::BenchDatabase() {
  sqlite3* db = nullptr;
  if (sqlite3_open(":memory:", &db) != SQLITE_OK) throw Error(err::dbCannotOpen, "no memory database");
  db_.reset(db);
  sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_extended_result_codes(db, 1);
  registerFunctions(db, pending_, clock_);
}

const TableDef* BenchDatabase::table(std::string_view name) const {
  for (const TableDef& table : tables_) {
    if (equalNoCase(table.name, name)) return &table;
  }
  return nullptr;
}

void BenchDatabase::add(std::string_view definition) {
  TableDef& table = tables_.emplace_back();
  const std::size_t colon = definition.find(':');
  table.name = definition.substr(0, colon);
  std::istringstream in{std::string(definition.substr(colon + 1))};
  std::string sql;
  for (std::string name, type; in >> name >> type;) {
    FieldDef& field = table.fields.emplace_back();
    field.name = name;
    field.type = typeOf(type[0]);
    if (type[0] == 't') field.size = std::stoi(type.substr(1));
    sql += (sql.empty() ? "" : ",") + declaration(field);
  }
  sql = "CREATE TABLE \"" + table.name + "\" (" + sql + ")";
  if (sqlite3_exec(db_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw Error(1, sqlite3_errmsg(db_.get()));
  }
}

void BenchDatabase::bind(sqlite3_stmt* statement, const dialect::Translation& translation,
                         const dialect::Scanned& scanned, const Parameters& parameters) const {
  for (std::size_t i = 0; i < translation.slots.size(); ++i) {
    const dialect::Slot& slot = translation.slots[i];
    Value value;
    if (slot.literal) {
      value = scanned.literals.at(*slot.literal);
    } else {
      for (const auto& [name, given] : parameters) {
        if (equalNoCase(name, slot.parameter)) value = given;
      }
    }
    if (slot.convertTo) value = convertForField(value, slot.convertTo->type, slot.convertTo->size);
    const int index = static_cast<int>(i) + 1;
    if (value.isNull()) {
      sqlite3_bind_null(statement, index);
    } else if (value.isText()) {
      sqlite3_bind_text(statement, index, value.toText().c_str(), -1, SQLITE_TRANSIENT);
    } else if (std::holds_alternative<double>(value.data()) ||
               std::holds_alternative<DateTime>(value.data())) {
      sqlite3_bind_double(statement, index, value.toDouble());
    } else {
      sqlite3_bind_int(statement, index, value.toInt32());
    }
  }
}

std::string BenchDatabase::run(std::string_view sql, const Parameters& parameters) {
  dialect::Scanned scanned;
  dialect::scan(sql, scanned);
  const dialect::Translation translation = dialect::translate(sql, *this);
  sqlite3_stmt* raw = nullptr;
  const char* tail = nullptr;
  if (sqlite3_prepare_v2(db_.get(), translation.sql.c_str(), -1, &raw, &tail) != SQLITE_OK || *tail != '\0') {
    const Error error = fileFailure(SQLITE_ERROR, sqlite3_errmsg(db_.get()), "");
    if (error.number() == err::dbSyntax) throw Error(error);
    throw Error(1, std::string(sqlite3_errmsg(db_.get())) + " in " + translation.sql);
  }
  const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(raw, sqlite3_finalize);
  bind(raw, translation, scanned, parameters);
  std::string rows;
  const int first =
      translation.table.empty() || translation.kind != dialect::Translation::Kind::select ? 0 : 1;
  int code = sqlite3_step(raw);
  for (; code == SQLITE_ROW; code = sqlite3_step(raw)) {
    if (!rows.empty()) rows += ';';
    for (int i = first; i < sqlite3_column_count(raw); ++i) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(raw, i));
      rows += (i > first ? "|" : "") + std::string(text == nullptr ? "-" : text);
    }
  }
  if (code != SQLITE_DONE) {
    if (pending_.error) throw Error(*std::exchange(pending_.error, std::nullopt));
    throw Error(1, std::string(sqlite3_errmsg(db_.get())) + " in " + translation.sql);
  }
  if (translation.kind == dialect::Translation::Kind::select) return rows;
  return std::to_string(sqlite3_changes(db_.get()));
}

std::string BenchDatabase::attempt(std::string_view sql, const Parameters& parameters) {
  try {
    return run(sql, parameters);
  } catch (const Error& error) {
    return "!" + std::to_string(error.number()) + (error.number() == 1 ? error.description() : "");
  }
}

std::string BenchDatabase::columns(std::string_view sql) const {
  const dialect::Translation translation = dialect::translate(sql, *this);
  std::string out;
  for (const FieldDef& column : translation.columns) out += (out.empty() ? "" : ",") + column.name;
  return out + "/" + translation.table;
}

}  // namespace voxa
