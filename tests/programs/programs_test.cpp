#include <filesystem>

#include "comm/com.h"
#include "platform/error.h"
#include "platform/full_disk.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

using Lines = std::vector<std::string>;

class ProgramsTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    driver.resultFile = "12";
    addDaily(2, "Office", "'08:00', '12:00', '13:30', '23:58'");
    addDaily(3, "Late", "'00:00', '06:00', '20:00', '23:59'");
    addWeekly("C", 3, "1, 2, 3, 0, 1, 2, 3, 2");
    addWeekly("E", 31, "2, 2, 2, 2, 2, 3, 3, 1");
  }
  void addDaily(int id, const std::string& name, const std::string& times) {
    db().execute(
        "insert into DailyPrograms (Id, Name, StartFirstInterval, EndFirstInterval, "
        "StartSecondInterval, EndSecondInterval, DailyProgramFlagD) values (" +
        std::to_string(id) + ", '" + name + "', " + times + ", True)");
  }
  void addWeekly(const std::string& family, int number, const std::string& days) {
    const std::string id = std::to_string(number);
    db().execute("insert into WeeklyPrograms values ('" + family + "', " + id + ", 'Week " + id + "', " +
                 days + ", True)");
  }
  /// Sends one program, of the family "D" a daily one, untested.
  std::int16_t download(const std::string& family, std::int16_t number, int params = DLDefault) {
    bool tested = true;
    const auto bits = static_cast<std::int16_t>(params);
    return family == "D" ? daily.download(number, CTStation, "Local", bits, &tested)
                         : weekly.download(family, number, CTStation, "Local", bits, &tested);
  }
  /// Numbers of the programs still to be sent, daily ones first.
  std::string flags() {
    std::string all;
    for (const char* sql :
         {"select Id from DailyPrograms where DailyProgramFlagD = True order by Id",
          "select ProgNum from WeeklyPrograms where WeeklyProgramFlagD = True order by ProgNum"}) {
      const auto rows = db().openRecordset(sql);
      for (; !rows->eof(); rows->moveNext()) all += rows->get(std::size_t{0}).toText() + " ";
      all += "/ ";
    }
    return all;
  }
  /// The command files sent since the last call.
  std::string sent() {
    std::string all = oneLine(driver.sent());
    driver.calls.clear();
    return all;
  }
  DailyProgram& daily = library->QDB().DailyPrograms();
  WeeklyProgram& weekly = library->QDB().WeeklyPrograms();
};

TEST_F(ProgramsTest, CommandLines) {
  addWeekly("C", 4, "Null, 0, 0, 0, 0, 0, 0, Null");
  const struct {
    const char* family;
    std::int16_t number, params, status;
    const char* sent;
  } cases[] = {{"D", 1, DLDefault, 0, "31010000240024002400||"},
               {"D", 2, DLDefault, 0, "31020800120013302358||"},
               {"D", 2, DLDefault, 0, ""},  // its flag is clear now
               {"D", 2, DLFull, 0, "31020800120013302358||"},
               {"D", 0, DLFull, 0, ""},
               {"D", 50, DLFull, -1, ""},
               {"C", 3, DLDefault, 0, "32030102030001020302|31010000240024002400||"},
               {"C", 3, DLDefault, 0, ""},
               {"c", 3, DLFull, 0, "42030102030001020302|31010000240024002400||"},
               {"C", 4, DLDefault, 0, "32040000000000000000||"},
               {"E", 31, DLDefault, 0, "42310202020202030301||"},  // the whole day on holidays only
               {"C", 0, DLFull, 0, ""},
               {"C", 31, DLFull, -1, ""}};
  for (const auto& c : cases) {
    EXPECT_EQ(download(c.family, c.number, c.params), c.status);
    EXPECT_EQ(sent(), c.sent) << c.family << c.number;
  }
  EXPECT_EQ(flags(), "3 / / ");
  EXPECT_EQ(boxes(), (Lines{"Can't find daily program 50|(DailyProgram.download)",
                            "Can't find weekly program 31|(WeeklyProgram.download)"}));
  db().execute("update DailyPrograms set Start3Interval = '20:15', Start4Interval = '00:00' where Id = 3");
  for (const std::int16_t zones : {std::int16_t{1}, std::int16_t{2}}) {
    glob->Com().pDailyPrograms4Zones = zones;
    EXPECT_EQ(download("D", 3, DLFull), 0);
    EXPECT_EQ(sent(), zones == 1 ? "310300000600200024002015240000002400||" : "31030000060020002400||");
  }
}

TEST_F(ProgramsTest, ANumberThatItsLineCannotHoldIsNotSent) {
  addDaily(100, "Hundred", "'08:00', '12:00', '13:30', '23:58'");
  addWeekly("C", 100, "1, 1, 1, 1, 1, 1, 1, 1");
  addWeekly("C", 5, "100, 1, 1, 1, 1, 1, 1, 1");
  db().execute("insert into Holidays values (100, 'Far', #12/25/2026#, True, True)");
  const std::string before = flags();
  EXPECT_EQ(download("D", 100), err::overflow);
  EXPECT_EQ(download("C", 100), err::overflow);
  EXPECT_EQ(download("C", 5), err::overflow);
  EXPECT_EQ(library->QDB().Holidays().download(100), err::overflow);
  EXPECT_EQ(boxes().size(), 4U);
  // A reader whose address would reach the whole line.
  addReader(1, "Door", 1, 95, 1);
  bool tested = true;
  EXPECT_EQ(daily.download(2, CTReader, "Door", DLNoMessage, &tested), err::invalidArgument);
  EXPECT_EQ(oneLine(glob->Com().popErrorList()),
            "|Daily program 2: Invalid argument: the reader Door has the controller address 95: it has to be "
            "one of 1 to 16");
  EXPECT_EQ(sent(), "");
  EXPECT_EQ(flags(), before);
  EXPECT_TRUE(boxes().empty());
}

TEST_F(ProgramsTest, AnOlderDatabaseGetsTheFurtherIntervals) {
  Com& com = glob->Com();
  com.AppDB = folder + "\\old.mdb";
  library->engine().create(com.AppDB)->close();
  library->QDB().openCommonDB();
  daily.create();
  daily.insertDefaultRecs();
  com.pDailyPrograms4Zones = 1;
  for (int opened = 0; opened < 2; ++opened) library->QDB().openCommonDB();
  EXPECT_EQ(query("select Start3Interval from DailyPrograms where Id = 1"), "23:59");
  EXPECT_EQ(db().tableDef("DailyPrograms").fields.size(), 11U);
  EXPECT_TRUE(boxes().empty());
}

TEST_F(ProgramsTest, NamesAndFreeNumbers) {
  EXPECT_EQ(weekly.DefaultName(), "Always");
  EXPECT_EQ(weekly.getName("C", 3), "Week 3");
  EXPECT_EQ(weekly.getProgNum("E", "week 31"), 31);
  EXPECT_EQ(weekly.getName("E", 3), "");
  EXPECT_EQ(weekly.getProgNum("C", "Week 31"), 0);
  EXPECT_EQ(boxes(), (Lines{"Can't find weekly program|(WeeklyPrograms.getName)",
                            "Can't find weekly program|(WeeklyPrograms.getProgNum)"}));
  EXPECT_EQ(weekly.getProgNum("C", "O'Hara"), 0);
  EXPECT_EQ(boxes().size(), 1U);
  EXPECT_THROW(addDaily(9, "O'Hara", "'', '', '', ''"), Error);
  EXPECT_EQ(daily.getFreeId(), 4);
  Transaction transaction(*engine);  // of that many rows one by one
  for (int n = 4; n <= 99; ++n) addDaily(n, std::to_string(n), "'', '', '', ''");
  const struct {
    const char* family;
    int last;
  } families[] = {{"C", 31}, {"E", 31}, {"e", 80}};
  for (const auto& f : families) {
    for (int n = 1; n <= f.last; ++n) {
      if (query("select ProgNum from WeeklyPrograms where ProgType = '" + std::string(f.family) +
                "' and ProgNum = " + std::to_string(n)) == "none") {
        EXPECT_EQ(weekly.getFreeId(f.family), n);
        addWeekly(f.family, n, "2, 2, 2, 2, 2, 2, 2, 2");
      }
    }
    EXPECT_EQ(weekly.getFreeId(f.family), -1) << f.family;
  }
  transaction.commit();
  EXPECT_EQ(daily.getFreeId(), -1);
}

TEST_F(ProgramsTest, AFailedProgramIsReportedAndKeepsItsFlag) {
  const std::pair<std::int16_t, const char*> codes[] = {{100, ""},
                                                        {0, ""},
                                                        {5, " | 5: |Local"},
                                                        {101, " | 101: "},
                                                        {247, " | 247: |Local Controller 2"},
                                                        {-1, " | -1: "},
                                                        {-32768, " | -32768: "}};
  write("RS001.OUT", "12");
  for (const auto& [code, error] : codes) {
    answerAll(code);
    db().execute("update DailyPrograms set DailyProgramFlagD = (Id = 2)");
    db().execute("update WeeklyPrograms set WeeklyProgramFlagD = (ProgNum = 3)");
    const std::int16_t status = code == 100 ? std::int16_t{0} : code;
    EXPECT_EQ(download("D", 2, DLNoMessage), status);
    EXPECT_EQ(boxes(), Lines{});
    glob->Com().popErrorList();
    EXPECT_EQ(download("D", 2, DLFull), status);
    EXPECT_EQ(download("C", 3, DLFull | DLNoMessage), status);  // reported even so
    EXPECT_EQ(flags(), status != 0 ? "2 / 3 / " : "/ / ") << code;
    const std::string box = std::string("Can't download parameters to controller. Try later") + error;
    EXPECT_EQ(boxes(), status != 0
                           ? Lines({box + "|(DailyProgram.download)", box + "|(WeeklyPrograms.download)"})
                           : Lines{});
    glob->Com().popErrorList();
  }
}

TEST_F(ProgramsTest, WhatIsNotSentKeepsItsFlag) {
  const std::string all = "1 2 3 / 3 31 / ";
  std::filesystem::create_directory("COMMAND.TXT");
  for (const int number : {err::badFileNumber, err::diskFull}) {
    std::optional<test::FullDisk> full;
    if (number == err::diskFull) full.emplace();
    EXPECT_EQ(download("D", 2), number);
    EXPECT_EQ(download("C", 3), number);
    const auto shown = boxes();
    ASSERT_EQ(shown.size(), 2U);
    const std::string error = "|Error " + std::to_string(number) + ": Can't write into file ";
    EXPECT_NE(shown[0].find(error), std::string::npos) << shown[0];
    std::filesystem::remove("COMMAND.TXT");
  }
  db().execute("update Stations set Active = False");
  EXPECT_EQ(download("D", 3), -1);
  db().execute("update Stations set Active = True");
  prompts.answers = {Answer::abort, Answer::abort, Answer::abort, Answer::abort};
  EXPECT_EQ(daily.download(3), 0);
  EXPECT_EQ(daily.generalDownload(), 0);
  EXPECT_EQ(weekly.generalDownload(), 0);
  EXPECT_EQ(glob->QDB().Holidays().generalDownload(), 0);
  EXPECT_EQ(driver.count(CmSendCommand), 0U);
  EXPECT_EQ(flags(), all);
  boxes();
  // Changed by somebody while it was on its way; gone by then.
  driver.answer = [&](const auto&) {
    db().execute("update DailyPrograms set EndFirstInterval = 'noon' where Id = 2");
    db().execute("delete from WeeklyPrograms where ProgNum = 3");
    return 100;
  };
  EXPECT_EQ(download("D", 2), 0);
  EXPECT_EQ(flags(), "1 2 3 / 31 / ");
  EXPECT_EQ(download("D", 2), err::typeMismatch);  // no time
  addWeekly("C", 3, "2, 2, 2, 2, 2, 2, 2, 2");
  EXPECT_EQ(download("C", 3), 0);
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(ProgramsTest, GeneralDownloads) {
  driver.resultFile = "1";
  driver.answer = [](const auto& call) {
    return call.commandFile.starts_with("3102") ? 101 : call.commandFile.starts_with("3203") ? 102 : 100;
  };
  bool tested = true;
  daily.setTableFlagsD(false);
  weekly.setTableFlagsD(false);
  EXPECT_EQ(daily.generalDownload(), 101);
  EXPECT_EQ(driver.count(CmReadDate), 1U);  // tested once
  EXPECT_EQ(sent(), "31010000240024002400||31020800120013302358||31030000060020002400||");
  EXPECT_EQ(flags(), "2 / / ");
  const std::string box = "Can't download parameters to controller. Try later | ";
  EXPECT_EQ(boxes(), Lines{box + "101: |(DailyPrograms.generalDownload)"});
  EXPECT_EQ(weekly.generalDownload(CTStation, "Local", "ProgType = 'E'", &tested), 0);
  EXPECT_EQ(calls(), "6:1,0");
  EXPECT_EQ(flags(), "2 / 0 / ");  // "always" is marked with the rest and never sent
  EXPECT_EQ(weekly.generalDownload(), 102);
  EXPECT_EQ(sent(), "32030102030001020302|31010000240024002400||42310202020202030301||");
  EXPECT_EQ(flags(), "2 / 0 0 3 / ");
  EXPECT_EQ(boxes(), Lines{box + "102: |(WeeklyPrograms.download)"});
  EXPECT_EQ(weekly.generalDownload(CTStation, "Local", "Nam = 'x'", &tested), err::dbTooFewParameters);
  EXPECT_EQ(boxes().size(), 1U);
}

}  // namespace
}  // namespace voxa
