#include "engines/sqlite/connection.h"

#include <chrono>
#include <cmath>
#include <limits>
#include <thread>
#include <utility>

#include "engines/sqlite/engine.h"
#include "engines/sqlite/errors.h"
#include "engines/sqlite/function_table.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa {

namespace {

struct Binder {
  sqlite3_stmt* statement;
  int index;

  void operator()(std::monostate) const { (void)sqlite3_bind_null(statement, index); }
  void operator()(bool v) const { (void)sqlite3_bind_int(statement, index, v ? -1 : 0); }
  void operator()(std::uint8_t v) const { (void)sqlite3_bind_int(statement, index, v); }
  void operator()(std::int16_t v) const { (void)sqlite3_bind_int(statement, index, v); }
  void operator()(std::int32_t v) const { (void)sqlite3_bind_int(statement, index, v); }
  void operator()(double v) const { (void)sqlite3_bind_double(statement, index, v); }
  void operator()(DateTime v) const { (void)sqlite3_bind_double(statement, index, v.days); }
  void operator()(const std::string& v) const {
    (void)sqlite3_bind_text(statement, index, v.data(), static_cast<int>(v.size()), SQLITE_STATIC);
  }
  void operator()(const Bytes& v) const {
    (void)sqlite3_bind_blob64(statement, index, v.data.data(), v.data.size(), SQLITE_STATIC);
  }
};

using Moment = std::chrono::steady_clock;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

/// A lock is asked for so often. SQLite's own waiting sleeps longer and longer, up to 100 ms: among many
/// users a file is free for a moment only, which such a sleeper never meets. Who asks more often than this
/// hinders the one that works: each question locks the file for a moment, too.
constexpr auto betweenQuestions = 5ms;

/// Asked after each refusal of a lock: whether to try again.
int waitForLock(void* context, int refusals) {
  auto& wait = *static_cast<LockWait*>(context);
  wait.last = Moment::now();
  if (refusals == 0) wait.begin = wait.last;
  if (wait.last - wait.begin >= wait.limit) return 0;
  std::this_thread::sleep_for(refusals == 0 ? 1ms : betweenQuestions);
  return 1;
}

/// Adds a whole number, which may be too large for the field type of its column. Returns whether it fits.
bool takeInteger(std::int64_t number, DataType type, std::vector<Value>& out) {
  const auto fits = [number](auto ofType) {
    using Limits = std::numeric_limits<decltype(ofType)>;
    return number >= Limits::min() && number <= Limits::max();
  };
  const bool fitsLong = fits(std::int32_t{});
  switch (type) {
    case DataType::Boolean:
      out.emplace_back(number != 0);
      return fitsLong;
    case DataType::Byte:
      if (!fits(std::uint8_t{})) break;
      out.emplace_back(static_cast<std::uint8_t>(number));
      return true;
    case DataType::Integer:
      if (!fits(std::int16_t{})) break;
      out.emplace_back(static_cast<std::int16_t>(number));
      return true;
    case DataType::Currency:
    case DataType::Single:
    case DataType::Double:
      out.emplace_back(static_cast<double>(number));
      return true;
    case DataType::Date:
      out.emplace_back(DateTime{static_cast<double>(number)});
      return true;
    default:
      break;
  }
  fitsLong ? out.emplace_back(static_cast<std::int32_t>(number))
           : out.emplace_back(static_cast<double>(number));
  return fitsLong && type == DataType::Long;
}

}  // namespace

void Statement::bind(int index, const Value& value) {
  std::visit(Binder{handle_.get(), index}, value.data());
}

void Statement::bind(int index, std::int64_t value) {
  (void)sqlite3_bind_int64(handle_.get(), index, value);
}

int Statement::step() {
  const int code = sqlite3_step(handle_.get());
  if (code == SQLITE_ROW || code == SQLITE_DONE) return code;
  // For a statement that is not renewed, only reset tells the reason.
  const int reason = sqlite3_reset(handle_.get());
  return reason == SQLITE_OK ? code : reason;
}

std::string_view Statement::text(int column) const {
  return textOf(sqlite3_column_value(handle_.get(), column));
}

bool Statement::take(int column, DataType type, std::vector<Value>& out) const {
  // One call for the value, and its parts from there, takes a third of the calls for each part. SQLite allows
  // it on a connection without a mutex.
  sqlite3_value* value = sqlite3_column_value(handle_.get(), column);
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      out.emplace_back();
      return true;
    case SQLITE_INTEGER:
      return takeInteger(sqlite3_value_int64(value), type, out);
    case SQLITE_FLOAT: {
      const double number = sqlite3_value_double(value) + 0.0;  // which makes -0 plain 0
      if (type == DataType::Date) {
        out.emplace_back(DateTime{number});
      } else if (type == DataType::Boolean) {
        out.emplace_back(number != 0);
      } else {
        out.emplace_back(number);
      }
      return type == DataType::Date || isReal(type);
    }
    case SQLITE_TEXT:
      out.emplace_back(textOf(value));
      return isText(type);
    default:
      out.emplace_back(bytesOf(value));
      return isBinary(type);
  }
}

Connection::Connection(const std::string& path, const SqliteOptions& options, const Clock& clock, Order order)
    : path_(path) {
  sqlite3* db = nullptr;
  const int flags = (options.readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
  const int opened = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
  handle_.reset(db);
  check(opened);
  (void)sqlite3_extended_result_codes(db, 1);
  wait_->limit = std::chrono::milliseconds(options.busyTimeoutMs);
  (void)sqlite3_busy_handler(db, &waitForLock, wait_.get());
  // Without this SQLite takes a misspelled name in double quotes for a text.
  (void)sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  (void)sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  registerFunctions(db, *pending_, clock, order == Order::today ? compareNoCase : compareAsBefore);
  // synchronous=EXTRA also syncs the folder after the journal was removed. Otherwise power lost right after a
  // commit could bring the journal back, and with it the state before the commit.
  run("PRAGMA foreign_keys=ON; PRAGMA recursive_triggers=OFF; PRAGMA trusted_schema=OFF;"
      "PRAGMA cell_size_check=ON; PRAGMA locking_mode=NORMAL; PRAGMA synchronous=EXTRA;");
  if (options.readOnly || options.journal == SqliteOptions::Journal::kept) return;
  run(options.journal == SqliteOptions::Journal::ahead ? "PRAGMA journal_mode=WAL"
                                                       : "PRAGMA journal_mode=DELETE");
}

Statement Connection::prepare(std::string_view sql, bool renewable) {
  sqlite3_stmt* statement = nullptr;
  const auto length = static_cast<int>(sql.size());
  check(renewable ? sqlite3_prepare_v3(handle_.get(), sql.data(), length, SQLITE_PREPARE_PERSISTENT,
                                       &statement, nullptr)
                  : sqlite3_prepare(handle_.get(), sql.data(), length, &statement, nullptr));
  ++prepared_;
  return Statement(statement);
}

void Connection::run(const std::string& sql) {
  check(sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr));
}

std::int64_t Connection::number(const std::string& sql) {
  Statement statement = prepare(sql);
  const int code = statement.step();
  if (code != SQLITE_ROW) fail(code == SQLITE_DONE ? SQLITE_INTERNAL : code);
  return statement.integer(0);
}

void Connection::copyFrom(const Connection& source) {
  sqlite3_backup* copying = sqlite3_backup_init(handle_.get(), "main", source.handle_.get(), "main");
  if (copying == nullptr) fail(sqlite3_extended_errcode(handle_.get()));
  const int code = sqlite3_backup_step(copying, -1);
  (void)sqlite3_backup_finish(copying);  // it repeats the code
  if (code != SQLITE_DONE) fail(code);
}

void Connection::giveWay() {
  const int changes = sqlite3_total_changes(handle_.get());
  if (changes == std::exchange(wait_->changes, changes) || Moment::now() - wait_->last > 1s) return;
  std::this_thread::sleep_for(betweenQuestions);
}

void Connection::beginReading() {
  if (inTransaction()) return;
  if (!begin_) {
    begin_ = prepare("BEGIN");
    rollback_ = prepare("ROLLBACK");
  }
  const int code = begin_->step();
  begin_->reset();
  if (code != SQLITE_DONE) fail(code);
  reading_ = true;
}

void Connection::endReading() noexcept {
  if (!reading_) return;
  reading_ = false;
  if (!inTransaction()) return;  // SQLite already ended it after a failure
  (void)rollback_->step();
  rollback_->reset();
}

void Connection::fail(int code) {
  if (pending_->error) {
    const Error error = *pending_->error;
    pending_->error.reset();
    throw error;
  }
  if ((code & 0xff) == SQLITE_IOERR && handle_ != nullptr &&
      fileError(sqlite3_system_errno(handle_.get()), path_).number() == err::diskFull) {
    code = SQLITE_FULL;
  }
  throw fileFailure(code, handle_ ? message() : sqlite3_errstr(code), path_);
}

Step::Step(Connection& connection) : connection_(connection) {
  connection_.endReading();
  nested_ = connection_.inTransaction();
  connection_.run(nested_ ? "SAVEPOINT step" : "BEGIN IMMEDIATE");
}

Step::~Step() {
  if (!open_ || !connection_.inTransaction()) return;
  try {
    connection_.run(nested_ ? "ROLLBACK TO step; RELEASE step" : "ROLLBACK");
  } catch (const Error&) {
    // The failure that led here is the one to report. SQLite undoes the rest when the file closes.
  }
}

void Step::release() {
  connection_.run(nested_ ? "RELEASE step" : "COMMIT");
  open_ = false;
}

}  // namespace voxa
