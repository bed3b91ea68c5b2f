#include <sqlite3.h>

#include <filesystem>
#include <functional>

#include "engines/sqlite/fixture.h"
#include "engines/sqlite/functions.h"
#include "platform/full_disk.h"

namespace voxa {
namespace {

class Transactions : public DatabaseTest {
 protected:
  void SetUp() override { createTables(); }

  /// The answer to an SQLite statement on a connection that is not the engine's.
  std::string plain(const char* sql) {
    if (raw == nullptr) {
      EXPECT_EQ(sqlite3_open(file.c_str(), &raw), SQLITE_OK);
      registerFunctions(raw, pending, clock);
    }
    std::string answer;
    const auto take = [](void* out, int, char** values, char**) {
      *static_cast<std::string*>(out) += values[0];
      return 0;
    };
    EXPECT_EQ(sqlite3_exec(raw, sql, take, &answer, nullptr), SQLITE_OK);
    return answer;
  }
  std::string integrity() { return plain("pragma integrity_check; pragma foreign_key_check"); }
  void TearDown() override { (void)sqlite3_close(raw); }

  PendingError pending;
  sqlite3* raw = nullptr;
};

TEST_F(Transactions, SpanAllDatabases) {
  const auto journal = engine->create(folder / "Journal.MDB");
  journal->createTable({"Journal", {{"Id", DataType::Long}}, {}});
  const auto insert = [](Database& database) { database.execute("insert into Journal (Id) values (1)"); };
  const auto count = [](Database& database) { return database.openRecordset("Journal")->recordCount(); };

  engine->begin();
  EXPECT_EQ(failure([&] { engine->begin(); }), err::dbInvalidArgument);
  insert(*journal);
  db->execute("delete from Stations");
  const auto late = engine->create(folder / "late.mdb");  // it joins the transaction
  late->createTable({"Journal", {{"Id", DataType::Long}}, {}});
  engine->rollback();
  EXPECT_EQ(count(*journal), 0U);
  EXPECT_EQ(countOf("Stations"), 2);
  EXPECT_TRUE(late->tableNames().empty());
  EXPECT_EQ(failure([&] { engine->commit(); }), err::dbNoTransaction);
  EXPECT_EQ(failure([&] { engine->rollback(); }), err::dbNoTransaction);

  {
    Transaction outer(*engine);
    Transaction(*engine).commit();  // it joins, so it decides nothing
    insert(*journal);
  }
  EXPECT_EQ(count(*journal), 0U);
  // A file that is closed within the transaction goes with it, also when it is opened again meanwhile.
  for (const bool reopened : {false, true}) {
    for (const bool committed : {false, true}) {
      auto file = engine->open(folder / "journal.mdb");
      engine->begin();
      insert(*file);
      file->close();
      if (reopened) insert(*(file = engine->open(folder / "journal.mdb")));
      if (committed) {
        engine->commit();
      } else {
        engine->rollback();
      }
      file = engine->open(folder / "journal.mdb");
      EXPECT_EQ(count(*file), committed ? reopened ? 2U : 1U : 0U) << reopened << committed;
      file->execute("delete from Journal");
    }
  }
}

TEST_F(Transactions, ThatCannotBeCommittedAreRolledBackInAllDatabases) {
  const auto journal = engine->create(folder / "Journal.MDB");
  journal->createTable({"Journal", {{"Id", DataType::Long}}, {}});
  engine->begin();
  db->execute("delete from Stations");
  journal->execute("insert into Journal (Id) values (1)");
  EXPECT_EQ(plain("begin; select count(*) from Stations"), "2");  // this reader keeps its lock
  EXPECT_EQ(failure([&] { engine->commit(); }), err::dbLocked);
  EXPECT_FALSE(engine->inTransaction());
  plain("commit");
  EXPECT_EQ(countOf("Stations"), 2);
  EXPECT_EQ(journal->openRecordset("Journal")->recordCount(), 0U);
}

TEST_F(Transactions, ThatTheEngineLosesAreOverForAll) {
  const auto journal = engine->create(folder / "Journal.MDB");
  journal->createTable({"Journal", {{"Id", DataType::Long}}, {}});
  engine->begin();
  journal->execute("insert into Journal (Id) values (1)");
  // This is what a full disk does to a transaction.
  int number = 0;
  const std::string big(20'000, 'x');
  {
    const test::FullDisk full(65'536);
    for (int i = 0; i < 2000 && number == 0; ++i) {
      number = executeFailure("insert into Readers (Name, [Note]) values ('a', '" + big + "')");
    }
  }
  EXPECT_EQ(number, err::dbDiskFull);
  EXPECT_FALSE(engine->inTransaction());
  EXPECT_EQ(failure([&] { engine->commit(); }), err::dbNoTransaction);
  EXPECT_EQ(journal->openRecordset("Journal")->recordCount(), 0U);
  EXPECT_EQ(countOf("Readers"), 0);
  EXPECT_EQ(integrity(), "ok");
}

TEST_F(Transactions, LocksOfOthersAreWaitedForAndThenTold) {
  int ready[2];
  int done[2];
  ASSERT_EQ(::pipe(ready) | ::pipe(done), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const int number = errorOf([&] {
      const auto other = makeSqliteEngine(clock);
      const auto opened = other->open(file);
      other->begin();
      opened->execute("update Stations set Active = True");
      char byte = 0;
      if (::write(ready[1], "x", 1) != 1 || ::read(done[0], &byte, 1) != 1) ::_exit(1);
      ::usleep(100'000);
      other->commit();
    });
    ::_exit(number == 0 ? 0 : 1);
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  EXPECT_EQ(executeFailure("delete from Stations"), err::dbLocked);
  EXPECT_EQ(countOf("Stations where Active = True"), 1);  // readers see the last committed state
  ASSERT_EQ(::write(done[1], "x", 1), 1);
  const auto waiting = makeSqliteEngine(clock);
  EXPECT_EQ(waiting->open(file)->execute("update Stations set Since = Now()"), 2);
  EXPECT_EQ(countOf("Stations where Active = True"), 2);
  ::waitpid(child, nullptr, 0);
}

// Another program changes the file between a read and a change in a transaction here.
TEST_F(Transactions, ThatReadBeforeTheyWriteWaitForOthers) {
  for (const bool named : {false, true}) {
    db->execute("update Stations set Active = False");
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const auto waiting = makeSqliteEngine(clock);
    const auto opened = waiting->open(file);
    const pid_t child = ::fork();
    if (child == 0) {
      ::_exit(errorOf([&] {
        const auto other = makeSqliteEngine(clock);
        const auto its = other->open(file);
        other->begin();
        its->execute("update Stations set Active = True");
        (void)!::write(ready[1], "x", 1);
        ::usleep(100'000);
        other->commit();
      }));
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_EQ(errorOf([&] {
                const auto transaction = named ? std::make_unique<Transaction>(*waiting, *opened)
                                               : std::make_unique<Transaction>(*waiting);
                const auto rows = opened->openRecordset("Stations");
                EXPECT_EQ(rows->get("Active"), Value(named)) << "what was committed when it was read";
                rows->edit();
                EXPECT_EQ(rows->get("Active"), Value(true)) << "what is going to be changed";
                rows->set("Name", "West");
                rows->update();
                transaction->commit();
              }),
              0);
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(countOf("Stations where Active = True and Name = 'West'"), 1);
  }
}

TEST_F(Transactions, LockNoFileThatTheyDoNotChange) {
  const auto journal = engine->create(folder / "Journal.MDB");
  journal->createTable({"Journal", {{"Id", DataType::Long}}, {}});
  const auto changeElsewhere = [&] {
    return inOtherProcess([](Database& other) { other.execute("update Stations set Active = True"); });
  };
  {
    Transaction transaction(*engine, *journal);
    journal->execute("insert into Journal (Id) values (1)");
    EXPECT_EQ(countOf("Stations"), 2);
    EXPECT_EQ(changeElsewhere(), 0);
    transaction.commit();
  }
  Transaction transaction(*engine, *db);
  EXPECT_EQ(countOf("Stations where Active = True"), 2);
  EXPECT_EQ(changeElsewhere(), err::dbLocked);
}

TEST_F(Transactions, OpenRowsHoldNoLock) {
  const auto rows = db->openRecordset("Stations");
  EXPECT_EQ(inOtherProcess([](Database& other) { other.execute("update Stations set Active = True"); }), 0);
}

TEST_F(Transactions, ReadingTogetherIsOfOneMomentAndEndsWithTheFirstChange) {
  const auto changeElsewhere = [&] {
    return inOtherProcess([](Database& other) { other.execute("update Stations set Active = not Active"); });
  };
  {
    const Reading reading(*db);
    const Reading again(*db);
    EXPECT_EQ(countOf("Stations where Active"), 1);
    EXPECT_EQ(changeElsewhere(), err::dbLocked);
    db->endReading();
    EXPECT_EQ(changeElsewhere(), 0);
    db->endReading();
  }
  const std::function<void()> changes[] = {[&] { db->execute("delete from Readers"); },
                                           [&] {
                                             const auto rows = db->openRecordset("Readers");
                                             rows->addNew();
                                             rows->set("Name", "Door");
                                             rows->update();
                                           },
                                           [&] {
                                             db->createTable({"More", {{"Id", DataType::Long}}, {}});
                                           },
                                           [&] { Transaction(*engine).commit(); }};
  for (const auto& change : changes) {
    db->beginReading();
    EXPECT_EQ(countOf("Stations"), 2);
    change();
    EXPECT_EQ(changeElsewhere(), 0);
    db->endReading();
  }
  EXPECT_EQ(countOf("Readers"), 1);
  EXPECT_EQ(db->tableNames().size(), 3U);
  engine->begin();  // within a transaction only the transaction decides
  { const Reading reading(*db); }
  db->execute("delete from Readers");
  engine->rollback();
  EXPECT_EQ(countOf("Readers"), 1);
}

TEST_F(Transactions, CommittedStateSurvivesAKilledProcess) {
  for (int round = 0; round < 8; ++round) {
    const std::int32_t before = countOf("Readers");
    db->close();
    int told[2];
    ASSERT_EQ(::pipe(told), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      const auto other = makeSqliteEngine(clock);
      const auto opened = other->open(file);
      for (;;) {
        other->begin();
        for (int i = 0; i < 10; ++i) {
          opened->execute("insert into Readers (Name, [Note]) values ('a', '" + std::string(3000, 'n') +
                          "')");
        }
        other->commit();
        (void)!::write(told[1], "x", 1);
      }
    }
    ::usleep(20'000 + 7'000 * round);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(told[1]);
    std::int32_t committed = 0;
    for (char byte = 0; ::read(told[0], &byte, 1) == 1;) ++committed;
    ::close(told[0]);
    db = engine->open(file);
    const std::int32_t added = countOf("Readers") - before;
    EXPECT_EQ(added % 10, 0);
    EXPECT_GE(added, 10 * committed);
    EXPECT_LE(added, 10 * (committed + 1));
    EXPECT_EQ(integrity(), "ok");
  }
  db->execute("delete from Readers");
  EXPECT_FALSE(std::filesystem::exists(file + "-journal"));
}

}  // namespace
}  // namespace voxa
