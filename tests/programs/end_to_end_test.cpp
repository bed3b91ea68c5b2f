#include <cstdlib>

#include "comm/com.h"
#include "messages/strings.h"
#include "platform/driver/library_driver.h"
#include "programs/daily_program.h"
#include "programs/weekly_program.h"
#include "site/site.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

class EndToEndTest : public test::InstallationTest {};

// Rows of the database to what a controller holds, through the driver library loaded by name.
TEST_F(EndToEndTest, ProgramsReachTheControllers) {
  unsetenv("TLXP_SITE");
  createInstallation();
  LibraryDriver real;
  glob.reset();
  library = std::make_unique<Library>(Library::Seams{*engine, real, prompts, clock});
  (void)library->Strings();
  library->Com().AppDB = folder + "\\KRV.mdb";
  library->Com().Chemin = folder;
  ASSERT_EQ(library->QDB().openCommonDB(), 0);
  site::Site site("site");
  for (const int address : {1, 2}) site.addController({.station = 1, .address = address});
  addReader(1, "Front", 1, 1, 1);
  addReader(2, "Back", 1, 2, 1);
  db().execute(
      "insert into DailyPrograms (Id, Name, StartFirstInterval, EndFirstInterval, StartSecondInterval, "
      "EndSecondInterval, DailyProgramFlagD) values (2, 'Office', '08:00', '12:00', '13:30', '23:59', True)");
  db().execute("insert into WeeklyPrograms values ('C', 3, 'Week', 2, 2, 2, 2, 2, 1, 0, 1, True)");

  EXPECT_EQ(library->QDB().DailyPrograms().generalDownload(), 0);
  EXPECT_EQ(library->QDB().WeeklyPrograms().download("C", 3), 0);
  EXPECT_EQ(boxes(), std::vector<std::string>{});
  EXPECT_EQ(query("select count(*) from ComStatus where Status = 1"), "2");
  EXPECT_EQ(query("select count(*) from WeeklyPrograms where WeeklyProgramFlagD"), "0");
  for (const int address : {1, 2}) {
    const site::Snapshot held = site.snapshot(1, address);
    for (const auto& line : held.received) EXPECT_EQ(line.reason, "") << line.text;
    ASSERT_EQ(held.dailyPrograms.size(), 2U);
    EXPECT_EQ(held.dailyPrograms[0].intervals, (std::vector<site::Interval>{{0, 1440}, {1440, 1440}}));
    EXPECT_EQ(held.dailyPrograms[1].number, 2);
    EXPECT_EQ(held.dailyPrograms[1].intervals, (std::vector<site::Interval>{{480, 720}, {810, 1440}}));
    ASSERT_EQ(held.weeklyPrograms.size(), 1U);
    EXPECT_EQ(held.weeklyPrograms[0].family, 'C');
    EXPECT_EQ(held.weeklyPrograms[0].number, 3);
    EXPECT_EQ(held.weeklyPrograms[0].days, (std::array{2, 2, 2, 2, 2, 1, 0}));
    EXPECT_EQ(held.weeklyPrograms[0].holiday, 1);
  }

  // A controller falls silent: the person is asked, and the other one is sent to alone.
  site::Faults silent;
  silent.silent = true;
  site.setFaults(1, 2, silent);
  db().execute("update DailyPrograms set EndFirstInterval = '11:00', DailyProgramFlagD = True where Id = 2");
  prompts.answers = {Answer::ignore};
  EXPECT_EQ(library->QDB().DailyPrograms().download(2), 0);
  const auto asked = boxes();
  ASSERT_EQ(asked.size(), 1U);
  EXPECT_NE(asked[0].find("|Local Controller 2  -  Back"), std::string::npos) << asked[0];
  EXPECT_EQ(site.snapshot(1, 1).dailyPrograms[1].intervals[0].end, 660);
  EXPECT_EQ(site.snapshot(1, 2).dailyPrograms[1].intervals[0].end, 720);
}

}  // namespace
}  // namespace voxa
