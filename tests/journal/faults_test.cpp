#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "engines/sqlite/engine.h"
#include "journal/journal_test.h"

namespace voxa::test {
namespace {

constexpr const char* archived = "Backup/J00305 24Dec2026-18.05.00.DAT";

TEST_F(JournalTest, FilesOfARead) {
  memory = good + "\r\n";
  EXPECT_EQ(read(), 0);
  EXPECT_EQ(textOf("J00305.DAT"), memory);
  EXPECT_EQ(textOf(archived), memory);
  EXPECT_FALSE(files::exists("J.DAT"));
  const std::string first = memory;
  memory = good + "2\r\n";
  read();
  EXPECT_EQ(textOf("J00305.OLD"), first);
  EXPECT_EQ(textOf(archived), first) << "a second read within the second";
  EXPECT_EQ(textOf("Backup/J00305 24Dec2026-18.05.01.DAT"), memory);
  memory = "";
  EXPECT_EQ(journal().readTransactions(CTStation, "North"), 0);
  EXPECT_TRUE(files::exists("J00300.DAT"));
  EXPECT_EQ(files::list("Backup").size(), 3U);
}

TEST_F(JournalTest, NoFaultLosesATransaction) {
  const std::string cant = "Can't transfer transactions from controller";
  const std::string line3 =
      " | 3: |North Controller 5  -  Front  -  Back  -  Side|(Journal.readTransactions)";
  // One box, whose text starts so; when the fault is gone, the next read takes what is on the controller.
  const auto fault = [&](const char* what, std::int16_t result, std::size_t rows, const std::string& box,
                         const std::function<void()>& arrange) {
    SCOPED_TRACE(what);
    memory = good;
    arrange();
    EXPECT_EQ(read(), result);
    EXPECT_EQ(rowCount(), rows);
    EXPECT_EQ(driver.count(CmSendClear), results.contains(CmSendClear) ? 1U : 0U);
    const auto shown = boxes();
    EXPECT_EQ(shown.size(), 1U);
    EXPECT_TRUE(!shown.empty() && shown[0].starts_with(box)) << shown.at(0);
    if (engine->inTransaction()) engine->rollback();
    db().execute("update Stations set Name = 'North' where Id = 3");
    for (const char* name : {"Backup", "J00305.BAD"}) std::filesystem::remove_all(name);
    results.clear();
    silent = false;
    memory = good;
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(rowCount(), rows + 1);
    EXPECT_TRUE(boxes().empty());
    driver.calls.clear();
    journal().DB()->execute("delete from Journal");
  };
  fault("no reset", 3, 0, cant + line3, [&] { results[CmResetReadPointer] = 3; });
  fault("nothing read", 3, 0, cant + line3, [&] { silent = true, results[cmReadMemory] = 3; });
  fault("success without a file", 53, 0, cant + "|Error 53:", [&] { silent = true; });
  fault("cut off", 3, 1, cant + line3, [&] { memory += "\r\n05 1024122", results[cmReadMemory] = 3; });
  fault("not cleared", 3, 1, "Can't delete controller buffer" + line3, [&] { results[CmSendClear] = 3; });
  fault("apostrophe in the station's name", 3075, 0,
        cant + "|DB Error 3075:", [&] { db().execute("update Stations set Name = 'N''th' where Id = 3"); });
  fault("no archive", 75, 1,
        cant + "|Error 75:", [&] { std::filesystem::remove_all("Backup"), write("Backup", "a file"); });
  fault("lines that cannot be kept", 52, 0,
        cant + "|Error 52:", [&] { memory += "\r\nx\r\n", files::makeFolder("J00305.BAD"); });
  fault("another's transaction", 3001, 0, cant + "|Error 3001:", [&] {
    watched.engine = nullptr, engine->begin(), results[CmResetReadPointer] = 5;
  });
}

TEST_F(JournalTest, AFileLeftBehindIsKept) {
  for (const char* kept : {"J-001.DAT", "J-002.DAT"}) {
    write("J.DAT", kept);
    memory = good;
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(textOf(kept), kept);
  }
  EXPECT_EQ(rows(), row(goodRow) + row(goodRow)) << "nothing of the files left behind";
}

TEST_F(JournalTest, WhoDoesNotAnswerIsNotRead) {
  driver.resultFile = "XXXX2XXXXXXXXXXX";
  memory = good;
  const auto readStation = [&] { return journal().readTransactions(CTStation, "North"); };
  prompts.answers = {Answer::ignore, Answer::abort};
  EXPECT_EQ(read(), -1);
  EXPECT_EQ(readStation(), -1);
  EXPECT_EQ(driver.count(cmReadMemory), 0U);
  prompts.answers = {Answer::ignore};
  EXPECT_EQ(readStation(), 0);
  EXPECT_EQ(rowCount(), 1U);
  boxes();
  driver.resultFile = "XXXX1XXXXXXXXXXX";
  // Of all stations nothing is known to be of one, and 7 is no component: neither is a failure to show.
  driver.calls.clear();
  EXPECT_EQ(journal().readTransactions(CTActiveStations, ""), -1);
  EXPECT_EQ(driver.count(cmReadMemory), 2U);
  EXPECT_EQ(journal().readTransactions(static_cast<ComponentType>(7), ""), -1);
  EXPECT_EQ(driver.count(CmSendClear), 0U);
  EXPECT_EQ(rowCount(), 1U);
  EXPECT_TRUE(boxes().empty());
}

/// Ends the process, as if killed, when the time is asked for once it is armed.
struct DeadlyClock : StillClock {
  [[nodiscard]] DateTime now() const override {
    if (armed) _exit(9);
    return StillClock::now();
  }
  bool armed = false;
};

TEST_F(JournalTest, AKilledProcessLosesNothing) {
  const auto open = [&](Library& over) {
    Glob(over).Initialize(folder + "\\KRV.mdb", folder + "\\S001.ini", folder + "\\COM.LOG", folder);
  };
  memory = good + "\r\nbad\r\n";  // the time is asked for to note the bad line, before the commit
  const auto answer = driver.answer;
  for (const bool committed : {false, true}) {
    glob.reset();
    library.reset();
    engine.reset();
    const pid_t child = fork();
    if (child == 0) {
      DeadlyClock clock;
      const auto ownEngine = makeSqliteEngine(clock);
      Library own({*ownEngine, driver, prompts, clock});
      open(own);
      driver.answer = [&](const auto& call) {
        const auto result = answer(call);
        if (call.command == cmReadMemory) clock.armed = !committed;
        if (call.command == CmSendClear) _exit(9);
        return result;
      };
      own.QDB().Journal().readTransactions(CTReader, "Front");
      _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 9);
    restart();
    open(*library);
    EXPECT_EQ(rows(), committed ? row(goodRow) : "");
    EXPECT_EQ(textOf(committed ? archived : "J.DAT"), memory);
  }
  memory = good;
  EXPECT_EQ(read(), 0);
  EXPECT_EQ(rows(), row(goodRow) + row(goodRow));
}

}  // namespace
}  // namespace voxa::test
