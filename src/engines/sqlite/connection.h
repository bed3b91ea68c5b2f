#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engines/sqlite/functions.h"
#include "platform/value.h"

namespace voxa {

class Clock;
struct SqliteOptions;

/// A prepared SQLite statement.
class Statement {
 public:
  explicit Statement(sqlite3_stmt* handle) : handle_(handle) {}

  /// Binds the value of placeholder ?index. A text must stay where it is until the statement has run.
  void bind(int index, const Value& value);
  void bind(int index, std::int64_t value);

  /// SQLITE_ROW, SQLITE_DONE, or the extended code of a failure; after a failure the statement is reset.
  [[nodiscard]] int step();
  void reset() { (void)sqlite3_reset(handle_.get()); }

  [[nodiscard]] std::int64_t integer(int column) const { return sqlite3_column_int64(handle_.get(), column); }
  [[nodiscard]] std::string_view text(int column) const;
  /// Adds the column's value to `out`, as a field of that type gives it. A value of another class, which an
  /// expression can give, comes as it is. Returns whether a field of that type can hold the value.
  bool take(int column, DataType type, std::vector<Value>& out) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* s) const { (void)sqlite3_finalize(s); }
  };
  std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
};

/// A connection's waiting for the locks of others.
struct LockWait {
  std::chrono::milliseconds limit{};
  std::chrono::steady_clock::time_point begin{};  ///< of the wait that goes on
  std::chrono::steady_clock::time_point last{};   ///< when it last waited
  int changes = 0;                                ///< rows that it had changed when it last gave way
};

/// One open SQLite file, with the settings, the collation and the functions that this engine needs.
class Connection {
 public:
  /// In which order texts are: compareNoCase or compareAsBefore.
  enum class Order { today, before };

  /// Opens a file that exists. Raises failures as fail() does.
  Connection(const std::string& path, const SqliteOptions& options, const Clock& clock,
             Order order = Order::today);

  /// A statement that SQLite prepares again by itself when the schema has changed.
  [[nodiscard]] Statement prepare(std::string_view sql) { return prepare(sql, true); }
  /// A statement that answers SQLITE_SCHEMA when the schema has changed since it was prepared. For texts that
  /// were translated with the definitions of that schema.
  [[nodiscard]] Statement prepareForSchema(std::string_view sql) { return prepare(sql, false); }

  /// Whether statements may change the text of the schema (PRAGMA writable_schema, set without parsing a
  /// text).
  void allowSchemaWrites(bool allowed) {
    (void)sqlite3_db_config(handle_.get(), SQLITE_DBCONFIG_WRITABLE_SCHEMA, allowed ? 1 : 0, nullptr);
  }
  void run(const std::string& sql);                           ///< statements without a result
  [[nodiscard]] std::int64_t number(const std::string& sql);  ///< first column of the only row

  /// Makes this file, an empty one, a copy of what is committed in another.
  void copyFrom(const Connection& source);

  /// To be called before a change outside of a transaction. Who has changed the file and met others there
  /// lets one of them in: who comes again at once would always find it free, and the others never.
  void giveWay();

  /// Begins a reading: several statements that only read share one lock. Does nothing where a transaction
  /// runs.
  void beginReading();
  /// Ends what beginReading began. A failure is ignored: there is nothing to undo, and the next statement
  /// meets it again.
  void endReading() noexcept;

  [[nodiscard]] bool readOnly() const { return sqlite3_db_readonly(handle_.get(), "main") == 1; }
  [[nodiscard]] bool inTransaction() const { return sqlite3_get_autocommit(handle_.get()) == 0; }
  [[nodiscard]] int changes() const { return sqlite3_changes(handle_.get()); }
  [[nodiscard]] std::int64_t lastRowid() const { return sqlite3_last_insert_rowid(handle_.get()); }
  [[nodiscard]] std::string message() const { return sqlite3_errmsg(handle_.get()); }
  [[nodiscard]] std::size_t preparedCount() const { return prepared_; }

  /// Raises the error for a failed call: the error that a vx_ function left behind, otherwise the one for the
  /// code.
  [[noreturn]] void fail(int code);

 private:
  struct Closer {
    void operator()(sqlite3* db) const { (void)sqlite3_close_v2(db); }
  };
  Statement prepare(std::string_view sql, bool renewable);
  void check(int code) {
    if (code != SQLITE_OK) fail(code);
  }

  std::string path_;
  std::unique_ptr<PendingError> pending_ = std::make_unique<PendingError>();
  std::unique_ptr<LockWait> wait_ = std::make_unique<LockWait>();
  std::unique_ptr<sqlite3, Closer> handle_;
  std::optional<Statement> begin_;
  std::optional<Statement> rollback_;
  bool reading_ = false;
  std::size_t prepared_ = 0;
};

/// Several statements that only read share one lock for the lifetime of this object, which is part of a
/// reading or transaction that runs already.
class ReadTogether {
 public:
  explicit ReadTogether(Connection& connection) : connection_(connection), own_(!connection.inTransaction()) {
    if (own_) connection_.beginReading();
  }
  ~ReadTogether() {
    if (own_) connection_.endReading();
  }
  ReadTogether(const ReadTogether&) = delete;
  ReadTogether& operator=(const ReadTogether&) = delete;

 private:
  Connection& connection_;
  bool own_;
};

/// Makes several statements one step: all of them count, or none when this object goes without release().
/// Within a transaction it is a savepoint. Otherwise it is a transaction of its own, which holds the writer's
/// lock from its start.
class Step {
 public:
  explicit Step(Connection& connection);
  ~Step();
  Step(const Step&) = delete;
  Step& operator=(const Step&) = delete;
  void release();

 private:
  Connection& connection_;
  bool nested_ = false;
  bool open_ = true;
};

}  // namespace voxa
