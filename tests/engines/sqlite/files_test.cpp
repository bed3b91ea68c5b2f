#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "engines/sqlite/fixture.h"
#include "engines/sqlite/functions.h"
#include "platform/database/schema_version.h"

namespace voxa {
namespace {

class DatabaseFiles : public DatabaseTest {
 protected:
  int openFailure(const std::string& path) {
    return failure([&] { (void)engine->open(path); });
  }
  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder.path()),
                                                  std::filesystem::directory_iterator()));
  }
  void allowAll(bool writing) {
    ASSERT_EQ(::chmod(file.c_str(), writing ? 0666 : 0444), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  }
};

TEST_F(DatabaseFiles, AreFoundInAnyCaseAndCreatedOnce) {
  createTables();
  EXPECT_EQ(db->name(), file);
  EXPECT_EQ(engine->open(folder / "krv.MDB")->name(), file);
  EXPECT_EQ(engine->databases().size(), 1U);
  const std::string before = bytesOf(file);
  EXPECT_EQ(failure([&] { (void)engine->create(folder / "krv.mdb"); }), err::dbFileExists);
  EXPECT_EQ(failure([&] { (void)engine->create(folder / "none/x.mdb"); }), err::dbCannotOpen);
  EXPECT_EQ(bytesOf(file), before);
  EXPECT_EQ(filesInFolder(), 1U);
  struct stat status {};
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(DatabaseFiles, ThatAreSortedAsBeforeAreSortedAnew) {
  db->createTable({"Words", {{"W", DataType::Text, 10}}, {{"W", {"W"}, true}}});
  for (const char* word : {"a1c", "a_c", "abc"})
    db->execute("insert into Words values ('" + std::string(word) + "')");
  const auto found = [](Database& database) {
    std::string all;
    for (const char* sql : {"select W from Words where W = 'a_c'", "select W from Words order by W"}) {
      for (const auto rows = database.openRecordset(sql); !rows->eof(); rows->moveNext())
        all += rows->get(0).toText() + " ";
    }
    return all;
  };
  EXPECT_EQ(found(*db), "a_c a_c a1c abc ");
  db->close();
  sqlite3* old = nullptr;
  PendingError pending;
  ASSERT_EQ(sqlite3_open(file.c_str(), &old), SQLITE_OK);
  registerFunctions(old, pending, clock, compareAsBefore);
  ASSERT_EQ(sqlite3_exec(old, "REINDEX; PRAGMA application_id=0x566f7841", nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(old);
  const std::string before = bytesOf(file);
  {
    const auto reader = makeSqliteEngine(clock, {.readOnly = true});
    EXPECT_EQ(found(*reader->open(file)), "a_c a1c a_c abc ");
  }
  EXPECT_EQ(bytesOf(file), before);
  db = engine->open(file);
  EXPECT_EQ(found(*db), "a_c a_c a1c abc ");
  EXPECT_EQ(valueOf("select count(*) from Words where W < 'a1'"), Value(std::int32_t{1}));
  reopen();
  EXPECT_EQ(bytesOf(file).substr(68, 4), "VoxB");
}

TEST_F(DatabaseFiles, ThatAreNoneOfOursStayAsTheyAre) {
  sqlite3* foreign = nullptr;
  ASSERT_EQ(sqlite3_open((folder / "foreign").c_str(), &foreign), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(foreign, "create table t(a); insert into t values(1)", nullptr, nullptr, nullptr),
            SQLITE_OK);
  ASSERT_EQ(sqlite3_close(foreign), SQLITE_OK);
  const std::string cases[] = {
      bytesOf(folder / "foreign"),
      "",
      "short",
      std::string(5000, 'x'),
      std::string("\x00\x01\x00\x00Standard Jet DB\x00", 20) + std::string(4076, '\1'),
      bytesOf(file).substr(0, 99)};
  const std::string path = folder / "other.mdb";
  for (const std::string& bytes : cases) {
    put(path, bytes);
    EXPECT_EQ(openFailure(path), err::dbNotADatabase);
    EXPECT_EQ(bytesOf(path), bytes);
  }
  EXPECT_EQ(openFailure(folder / "missing.mdb"), err::dbFileNotFound);
  EXPECT_EQ(openFailure(folder / "missing/x.mdb"), err::dbFileNotFound);
  EXPECT_EQ(openFailure(folder.path()), err::dbCannotOpen);
  EXPECT_EQ(filesInFolder(), 3U);
}

TEST_F(DatabaseFiles, DamagedPagesAreTold) {
  createTables();
  db->close();
  std::string bytes = bytesOf(file);
  std::fill(bytes.begin() + 4096, bytes.end(), '\x55');
  put(file, bytes);
  EXPECT_EQ(failure([&] { (void)engine->open(file)->openRecordset("Stations"); }), err::dbNotADatabase);
  std::fill(bytes.begin() + 100, bytes.end(), '\x55');
  put(file, bytes);
  EXPECT_EQ(openFailure(file), err::dbNotADatabase);
  EXPECT_EQ(bytesOf(file), bytes);
}

TEST_F(DatabaseFiles, RightsDecideWhatCanBeDone) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs the administrator's right to become another user";
  createTables();
  db->close();
  const auto run = [&](auto action) {
    return inOtherProcess(
        [&](Database& opened) {
          if (opened.openRecordset("Stations")->recordCount() != 2) throw Error(1, "rows are missing");
          action(opened);
        },
        true);
  };
  const auto write = [](Database& opened) { opened.execute("delete from Stations"); };
  const auto edit = [](Database& opened) { opened.openRecordset("Stations")->edit(); };
  const auto stamp = [&](Database&) {
    const auto own = makeSqliteEngine(clock);
    bringForward(*own, *own->open(file), {SchemaStep()});
  };
  allowAll(false);
  EXPECT_EQ(run(stamp), 0);
  EXPECT_EQ(run(write), err::dbNotUpdatable);
  EXPECT_EQ(run(edit), err::dbNotUpdatable);
  allowAll(true);  // but a journal cannot be made beside it
  EXPECT_EQ(run(stamp), 0);
  EXPECT_EQ(run(write), err::dbCannotOpen);
  ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
  EXPECT_EQ(run(write), err::dbCannotOpen);
  EXPECT_EQ(engine->open(file)->openRecordset("Stations")->recordCount(), 2U);
  EXPECT_EQ(engine->open(file)->schemaVersion(), 0U);
}

TEST_F(DatabaseFiles, OpeningTwiceKeepsTheLocksOfTheFirst) {
  createTables();
  engine->begin();
  db->execute("delete from Stations where Id = 1");
  (void)failure([&] { (void)engine->open(file); });
  EXPECT_TRUE(locked());
  engine->commit();
}

TEST_F(DatabaseFiles, ThatDoMoreThanTheirStatementsAreNoneOfOurs) {
  createTables();
  db->close();
  sqlite3* raw = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &raw), SQLITE_OK);
  const char* trigger = "create trigger t after update on Stations begin delete from Stations; end";
  ASSERT_EQ(sqlite3_exec(raw, trigger, nullptr, nullptr, nullptr), SQLITE_OK);
  ASSERT_EQ(sqlite3_close(raw), SQLITE_OK);
  EXPECT_EQ(openFailure(file), err::dbNotADatabase);
}

}  // namespace
}  // namespace voxa
