#include "engines/sqlite/engine.h"

#include <algorithm>
#include <optional>

#include "engines/sqlite/connection.h"
#include "engines/sqlite/database_file.h"
#include "engines/sqlite/session.h"
#include "engines/sqlite/sqlite_database.h"

namespace voxa {

std::optional<Connection> Session::reopen(const std::string& path) {
  const auto found =
      std::find_if(closed.begin(), closed.end(), [&](const Closed& file) { return file.path == path; });
  if (found == closed.end()) return std::nullopt;
  std::optional<Connection> connection(std::move(found->connection));
  closed.erase(found);
  return connection;
}

void Session::commit() {
  try {
    for (SqliteDatabase* database : open) database->settle();
    for (SqliteDatabase* database : open) database->commit();
    for (Closed& file : closed) file.connection.run("COMMIT");
  } catch (const Error&) {
    abandonTransaction();
    throw;
  }
  closed.clear();
  inTransaction = false;
}

void Session::rollback() {
  inTransaction = false;
  closed.clear();  // what a file did not commit goes when it closes
  std::optional<Error> first;
  for (SqliteDatabase* database : open) {
    try {
      database->rollback();
    } catch (const Error& error) {
      if (!first) first = error;
    }
  }
  if (first) throw *first;
}

void Session::abandonTransaction() {
  try {
    rollback();
  } catch (const Error&) {
    // The failure that led here is the one to report.
  }
}

void Session::failed(const Error& error) {
  // SQLite undoes its whole transaction by itself when the disk is full or memory is lacking. Ours is one
  // transaction over all databases, so then no part of it can stay.
  const bool lost = inTransaction && std::any_of(open.begin(), open.end(), [](const SqliteDatabase* d) {
                      return d->lostTransaction();
                    });
  if (lost) abandonTransaction();
  Failures::failed(error);
}

namespace {

class SqliteEngine final : public DatabaseEngine {
 public:
  SqliteEngine(const Clock& clock, const SqliteOptions& options)
      : session_(std::make_shared<Session>(clock, options)) {}

  ~SqliteEngine() override {
    while (!session_->open.empty()) session_->open.back()->abandon();
  }
  SqliteEngine(const SqliteEngine&) = delete;
  SqliteEngine& operator=(const SqliteEngine&) = delete;

  std::shared_ptr<Database> create(std::string_view path) override {
    return session_->guarded([&] {
      createDatabaseFile(path, *session_);
      const std::string full = databasePath(path);
      return std::make_shared<SqliteDatabase>(session_, full, openDatabaseFile(full, *session_, true));
    });
  }

  std::shared_ptr<Database> open(std::string_view path, FileUse use) override {
    return session_->guarded([&] {
      const std::string full = databasePath(path);
      if (use == FileUse::reading) {
        const bool sorted = checkDatabaseFile(full, path);
        return std::make_shared<SqliteDatabase>(session_, full, readDatabaseFile(full, *session_, sorted));
      }
      if (auto connection = session_->reopen(full))
        return std::make_shared<SqliteDatabase>(session_, full, *std::move(connection));
      const bool sorted = checkDatabaseFile(full, path);
      return std::make_shared<SqliteDatabase>(session_, full, openDatabaseFile(full, *session_, sorted));
    });
  }

  [[nodiscard]] std::vector<std::shared_ptr<Database>> databases() const override {
    std::vector<std::shared_ptr<Database>> list;
    for (SqliteDatabase* database : session_->open) {
      // weak_from_this is empty while the last holder lets go of the database.
      if (auto held = database->weak_from_this().lock()) list.push_back(std::move(held));
    }
    return list;
  }

  void begin() override {
    session_->guarded([&] {
      requireNoTransaction(*this);
      for (SqliteDatabase* database : session_->open) database->endReading();
      session_->inTransaction = true;
    });
  }

  void commit() override {
    session_->guarded([&] {
      requireTransaction(*this);
      session_->commit();
    });
  }

  void rollback() override {
    session_->guarded([&] {
      requireTransaction(*this);
      session_->rollback();
    });
  }

  [[nodiscard]] bool inTransaction() const override { return session_->inTransaction; }
  [[nodiscard]] const std::vector<ErrorInfo>& errors() const override { return session_->errors; }
  [[nodiscard]] std::uint64_t lastFailure() const override { return session_->lastFailure; }

 private:
  std::shared_ptr<Session> session_;
};

}  // namespace

std::unique_ptr<DatabaseEngine> makeSqliteEngine(const Clock& clock, const SqliteOptions& options) {
  return std::make_unique<SqliteEngine>(clock, options);
}

}  // namespace voxa
