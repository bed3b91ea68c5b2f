#include "work/download.h"

#include "comm/com.h"
#include "support/installation_test.h"
#include "work/line_test.h"
#include "work/reading.h"

namespace voxa::test {
namespace {

/// Controllers 1 and 2 of the local station; daily programs 2 (Morning) and 3 (Evening) beside the whole day.
class DownloadTest : public InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    addStation(3, "North");
    addReader(7, "Front", 3, 5, 1);
    addReader(1, "Gate", 1, 1, 1);
    addReader(2, "Yard", 1, 2, 1);
    for (const char* values : {"2, 'Morning', '06:00'", "3, 'Evening', '18:00'"}) {
      db().execute(
          "insert into DailyPrograms (Id, Name, StartFirstInterval, EndFirstInterval, StartSecondInterval, "
          "EndSecondInterval, DailyProgramFlagD) values (" +
          std::string(values) + ", '20:00', '23:59', '23:59', True)");
    }
    driver.resultFiles = {{1, "11"}, {3, "XXXX1"}};
  }
  /// The rows of a report, "Morning done".
  static std::string rowsOf(const Report& report) {
    std::string all;
    for (const Report::Row& row : report.rows) {
      const char* const outcomes[] = {"done", "unchanged", "waiting", "silent", "failed"};
      all += row.row + " " + outcomes[static_cast<int>(row.outcome)] + "|";
    }
    return all;
  }
  std::string marked() { return query("select count(*) from DailyPrograms where DailyProgramFlagD = true"); }
};

TEST_F(DownloadTest, WhoeverIsSilentIsPassedOverAndWhatIsSentStaysMarkedForHim) {
  driver.resultFiles[1] = "1X";  // of controller 2 the driver says nothing
  const Component local{CTStation, "Local"};
  const LineTest test = testLines(*library, local);
  EXPECT_TRUE(test.allAnswer) << "none failed";
  ASSERT_EQ(test.silent.size(), 1U);
  EXPECT_EQ(test.silent[0].name, "Local Controller 2  -  Yard");
  calls();
  const Report report = download(*library, DownloadKind::dailyPrograms, {local, false, test.silent});
  EXPECT_EQ(rowsOf(report), "Anytime done|Morning done|Evening done|");
  EXPECT_EQ(calls(), "6:1,41 6:1,41 6:1,41");
  EXPECT_EQ(marked(), "3");
  EXPECT_FALSE(report.failed());

  driver.resultFiles[1] = "11";
  const LineTest again = testLines(*library, {});
  EXPECT_TRUE(again.silent.empty());
  (void)download(*library, DownloadKind::dailyPrograms, {{}, false, again.silent});
  EXPECT_EQ(marked(), "0");
  db().execute("insert into AccessGroups (Id, Name) values (9, 'Nobody')");
  db().execute(
      "insert into Cardholders (CardNum, Name, CardCode, AccessGroupId, CardCodeFlagD) "
      "values (7, 'Ann', '7', 9, True)");
  db().execute(
      "insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgNum) select 9, Id, 0 from Readers");
  EXPECT_EQ(rowsOf(download(*library, DownloadKind::cards, {{}, false, test.silent})), "Ann done|");
  EXPECT_EQ(boxes(), std::vector<std::string>{});
}

TEST_F(DownloadTest, AFailureIsToldAsAValueOfItsRowOrOfTheWholeAndStopsNoOther) {
  const LineTest test = testLines(*library, {});
  driver.answer = [](const RecordingDriver::Call& call) -> std::int16_t {
    return call.commandFile.starts_with("3102") ? std::int16_t{3} : std::int16_t{100};
  };
  for (const bool full : {false, true}) {
    const Report report = download(*library, DownloadKind::dailyPrograms, {{}, full, test.silent});
    EXPECT_EQ(rowsOf(report), "Anytime done|Morning failed|Evening done|");
    EXPECT_EQ(marked(), "1");
    EXPECT_TRUE(report.failed());
    const std::vector<Notice> told = report.allNotices();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].message.mnemonic, "msgCantDownload");
    EXPECT_EQ(told[0].message.method, full ? "DailyPrograms.generalDownload" : "DailyProgram.download");
    EXPECT_EQ(report.notices.empty(), !full) << "of one row";
  }
  EXPECT_EQ(boxes(), std::vector<std::string>{});
}

TEST_F(DownloadTest, ATestThatCannotBeMadeIsBrokenAndSaysSo) {
  db().execute("update Stations set ModemIniFile = '//far/m.ini' where Id = 1");
  const LineTest test = testLines(*library, {CTReader, "Gate"});
  EXPECT_TRUE(test.broken);
  EXPECT_FALSE(test.allAnswer);
  ASSERT_EQ(test.notices.size(), 1U);
  EXPECT_EQ(test.notices[0].message.error.number, 5);
  EXPECT_EQ(test.silent.size(), 1U) << "nobody's silence is an answer";
  EXPECT_EQ(boxes(), std::vector<std::string>{});
}

TEST_F(DownloadTest, ARunOverAllControllersNamesEachAndWhyItFailed) {
  struct Steps : Observer {
    void progress(const char* /*what*/, std::size_t number, std::size_t total) override {
      seen += std::to_string(number) + "/" + std::to_string(total) + " ";
    }
    std::string seen;
  } steps;
  addStation(5, "Idle", false);
  addReader(14, "Attic", 5, 1, 1);
  driver.answer = [&](const RecordingDriver::Call& call) -> std::int16_t {
    if (call.command == cmReadMemory) write("J.DAT", "05 10241226180500081200\r\n");
    return call.command == CmReadDate && call.address == 42 ? std::int16_t{3} : std::int16_t{100};
  };
  const Report report = readAll(*library, &steps);
  EXPECT_EQ(steps.seen, "1/3 2/3 3/3 ");
  std::string read;
  for (const Report::Controller& controller : report.controllers) {
    read += controller.name + (controller.outcome == Outcome::done ? "" : ": " + oneLine(controller.reason)) +
            "; ";
  }
  EXPECT_EQ(read,
            "Local - 1; Local - 2: Can't transfer transactions from controller| 3:|Local Controller 2  -  "
            "Yard; North - 5; ");
  EXPECT_TRUE(report.broken);
  EXPECT_EQ(journalSize(*library), 2);
  EXPECT_EQ(boxes(), std::vector<std::string>{});
}

}  // namespace
}  // namespace voxa::test
