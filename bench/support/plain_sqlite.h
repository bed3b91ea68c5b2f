#pragma once

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace voxa::bench {

/// The rival: SQLite as one writes it by hand, with direct calls. Only opening, preparing and the check of
/// results are written here.
class PlainSqlite {
 public:
  /// Opens or creates a file. It has what the definitions in it need (the collation, foreign keys). It
  /// commits as durably as SQLite does by default: a rollback journal that is deleted, full synchronisation.
  explicit PlainSqlite(const std::string& path);

  /// What is thrown when somebody else has the file locked.
  struct Busy : std::runtime_error {
    using runtime_error::runtime_error;
  };

  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { (void)sqlite3_finalize(statement); }
  };
  using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;

  [[nodiscard]] Statement prepare(const std::string& sql);
  void run(const std::string& sql);
  /// Runs a prepared statement without a result, and resets it.
  void run(const Statement& statement);
  /// Steps to the next row. Behind the last row it returns false and resets the statement.
  [[nodiscard]] bool nextRow(const Statement& statement);
  [[nodiscard]] bool inTransaction() const { return sqlite3_get_autocommit(db_.get()) == 0; }

 private:
  void check(int code, int wanted = SQLITE_OK, sqlite3_stmt* statement = nullptr);

  struct Closer {
    void operator()(sqlite3* db) const { (void)sqlite3_close_v2(db); }
  };
  std::unique_ptr<sqlite3, Closer> db_;
};

[[nodiscard]] inline std::string text(const PlainSqlite::Statement& statement, int column) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column));
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), column))};
}

}  // namespace voxa::bench
