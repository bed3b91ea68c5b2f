#include "platform/database/schema_version.h"

#include <atomic>
#include <chrono>
#include <thread>

#include "engines/sqlite/fixture.h"
#include "platform/full_disk.h"

namespace voxa {
namespace {

class SchemaVersions : public DatabaseTest {
 protected:
  void SetUp() override { createTables(); }

  int bringFailure(const SchemaSteps& steps) {
    return errorOf([&] { bringForward(*engine, *db, steps); });
  }
  [[nodiscard]] static std::size_t columns(Database& database) {
    return database.tableDef("Stations").fields.size();
  }
  const SchemaStep addNote = [](Database& old) { old.addField("Stations", {"Note", DataType::Text, 10}); };
};

TEST_F(SchemaVersions, AnOldFileIsBroughtForwardAndACopyOfItKept) {
  put(file + ".v0", "an older copy");
  const SchemaStep whileLocked = [&](Database&) { EXPECT_TRUE(locked()); };  // the copying has not ended that
  bringForward(*engine, *db, {SchemaStep(), whileLocked, addNote});
  EXPECT_EQ(bytesOf(file + ".v0"), "an older copy");
  reopen();
  EXPECT_EQ(db->schemaVersion(), 3U);
  EXPECT_EQ(columns(*db), 5U);
  const auto kept = engine->open(file + ".v0-2");
  EXPECT_EQ(kept->schemaVersion(), 0U);
  EXPECT_EQ(columns(*kept), 4U);
  EXPECT_EQ(kept->openRecordset("Stations")->recordCount(), 2U);
  db->copyTo(file + ".copy");
  EXPECT_EQ(engine->open(file + ".copy")->schemaVersion(), 3U);
}

TEST_F(SchemaVersions, WhatCannotBeBroughtForwardStaysAsItWas) {
  const std::string before = bytesOf(file);
  EXPECT_EQ(bringFailure({addNote, [](Database& old) { old.deleteTable("Nowhere"); }}), err::dbUnknownTable);
  {
    const test::FullDisk full;
    EXPECT_EQ(bringFailure({addNote}), err::dbDiskFull);
    EXPECT_EQ(bringFailure({SchemaStep()}), 0);
  }
  {
    const Transaction ofTheCaller(*engine);
    EXPECT_EQ(bringFailure({addNote}), err::dbInvalidArgument);
    EXPECT_EQ(bringFailure({SchemaStep()}), 0);
  }
  checkBroughtForward(*engine, *db, {addNote}, file + "~trial",
                      [](Database& future) { EXPECT_EQ(columns(future), 5U); });
  EXPECT_EQ(columns(*db), 4U);
  EXPECT_EQ(bytesOf(file), before);
  const auto files = std::distance(std::filesystem::directory_iterator(folder.path()), {});
  EXPECT_EQ(files, 1);
}

TEST_F(SchemaVersions, OfTwoProcessesOneDoesItAndTheOtherFindsItDone) {
  std::atomic<int> runs = 0;
  std::thread other;
  SchemaSteps steps = {[&](Database&) {
    if (++runs > 1) return;
    other = std::thread([&] {
      const auto theirs = makeSqliteEngine(clock);
      bringForward(*theirs, *theirs->open(file), steps);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));  // it reads the old number, and waits
  }};
  bringForward(*engine, *db, steps);
  other.join();
  EXPECT_EQ(runs, 1);
}

}  // namespace
}  // namespace voxa
