#include "support/plain_sqlite.h"

#include <string_view>

#include "engines/language/dialect.h"
#include "platform/text.h"

namespace voxa::bench {

namespace {

int collate(void* /*unused*/, int leftSize, const void* left, int rightSize, const void* right) {
  const auto view = [](const void* bytes, int size) {
    return std::string_view(static_cast<const char*>(bytes), static_cast<std::size_t>(size));
  };
  return compareNoCase(view(left, leftSize), view(right, rightSize));
}

}  // namespace

PlainSqlite::PlainSqlite(const std::string& path) {
  sqlite3* db = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  const int code = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
  db_.reset(db);
  check(code);
  check(sqlite3_create_collation(db, dialect::collation, SQLITE_UTF8, nullptr, &collate));
  run("PRAGMA foreign_keys=ON; PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL");
}

PlainSqlite::Statement PlainSqlite::prepare(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  check(sqlite3_prepare_v3(db_.get(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
  return Statement(statement);
}

void PlainSqlite::run(const std::string& sql) {
  check(sqlite3_exec(db_.get(), sql.c_str(), nullptr, nullptr, nullptr));
}

void PlainSqlite::run(const Statement& statement) {
  check(sqlite3_step(statement.get()), SQLITE_DONE, statement.get());
  check(sqlite3_reset(statement.get()));
}

bool PlainSqlite::nextRow(const Statement& statement) {
  const int code = sqlite3_step(statement.get());
  if (code == SQLITE_ROW) return true;
  check(code, SQLITE_DONE, statement.get());
  check(sqlite3_reset(statement.get()));
  return false;
}

void PlainSqlite::check(int code, int wanted, sqlite3_stmt* statement) {
  if (code == wanted) return;
  const std::string text = std::string("Hand-written SQLite: ") + sqlite3_errmsg(db_.get());
  if (statement != nullptr) (void)sqlite3_reset(statement);
  if ((code & 0xff) == SQLITE_BUSY) throw Busy(text);
  throw std::runtime_error(text);
}

}  // namespace voxa::bench
