#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/temporary_folder.h"

namespace voxa {

class DatabaseTest : public testing::Test {
 protected:
  /// The number of the error that an action on the opened file raises; 0 for none. It runs in a process of
  /// its own. dropRights: without the administrator's rights.
  template <typename Action>
  int inOtherProcess(Action action, bool dropRights = false) {
    int result[2];
    if (::pipe(result) != 0) return -1;
    const pid_t child = ::fork();
    if (child == 0) {
      if (dropRights && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(1);
      const int number = errorOf([&] {
        const auto other = makeSqliteEngine(clock, {.busyTimeoutMs = 20});
        action(*other->open(file));
      });
      ::_exit(::write(result[1], &number, sizeof number) == sizeof number ? 0 : 1);
    }
    ::close(result[1]);
    int number = -1;
    if (::read(result[0], &number, sizeof number) != sizeof number) number = -1;
    ::close(result[0]);
    ::waitpid(child, nullptr, 0);
    return number;
  }

  /// Whether another process finds a lock on the file. It asks the system: SQLite in a forked process takes
  /// its parent's locks for its own process's, even when the parent has lost them.
  [[nodiscard]] bool locked() const {
    const pid_t child = ::fork();
    if (child == 0) {
      struct flock lock {};
      lock.l_type = F_WRLCK;
      const bool answered = ::fcntl(::open(file.c_str(), O_RDWR), F_GETLK, &lock) == 0;
      ::_exit(answered && lock.l_type != F_UNLCK ? 1 : 0);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WEXITSTATUS(status) == 1;
  }

  /// The number of the error that an action raises. The engine's collection must have the same one.
  template <typename Action>
  int failure(Action action) {
    lastDescription.clear();
    const int number = errorOf([&] {
      try {
        (void)action();
      } catch (const Error& e) {
        lastDescription = e.description();
        throw;
      }
    });
    if (number == 0) return 0;
    const ErrorInfo first = engine->errors().empty() ? ErrorInfo() : engine->errors().front();
    EXPECT_EQ(first.number, number);
    EXPECT_EQ(first.description, lastDescription);
    return number;
  }

  int executeFailure(const std::string& sql) {
    return failure([&] { db->execute(sql); });
  }

  /// The first value that a query gives; Null when there is no row.
  Value valueOf(const std::string& sql) {
    const auto rows = db->openRecordset(sql);
    return rows->eof() ? Value() : rows->get(0);
  }

  std::int32_t countOf(const std::string& from) { return valueOf("select count(*) from " + from).toInt32(); }

  /// Makes Stations (Id, Name, Active, Since) and Readers (Id, StationId, Position, Name, Note), with two
  /// stations.
  void createTables() {
    db->createTable({"Stations",
                     {{"Id", DataType::Integer},
                      {"Name", DataType::Text, 10},
                      {"Active", DataType::Boolean},
                      {"Since", DataType::Date}},
                     {{"Id", {"Id"}, true}, {"Name", {"Name"}, false, true, true}}});
    db->createTable({"Readers",
                     {{.name = "Id", .type = DataType::Long, .autoIncrement = true},
                      {"StationId", DataType::Integer},
                      {"Position", DataType::Byte, 0, 1, false, false, false, ">=0 and <=32"},
                      {"Name", DataType::Text, 50, {}, true},
                      {"Note", DataType::Memo, 0, {}, false, true}},
                     {{"Id", {"Id"}, true}, {"Site", {"StationId"}}}});
    db->execute("insert into Stations (Id, Name, Active) values (1, 'North', True)");
    db->execute("insert into Stations (Id, Name) values (2, 'South')");
  }

  void reopen() {
    db->close();
    db = engine->open(file);
  }

  TemporaryFolder folder;
  std::string file = folder / "KRV.mdb";
  SystemClock clock;
  std::unique_ptr<DatabaseEngine> engine = makeSqliteEngine(clock, {.busyTimeoutMs = 50});
  std::shared_ptr<Database> db = engine->create(file);
  std::string lastDescription;
};

}  // namespace voxa
