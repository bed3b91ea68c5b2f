#include "comm/com.h"
#include "support/installation_test.h"
#include "work/cards.h"
#include "work/daily_programs.h"
#include "work/groups.h"
#include "work/holidays.h"
#include "work/lifts.h"
#include "work/refusal.h"
#include "work/weekly_programs.h"

namespace voxa {
namespace {

// Staff, with a card, opens Front and Side, the two doors of controller 1, by Day, and uses its lift output.
class TimesAndGroupsTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    addReader(1, "Front", 1, 1, 1);
    addReader(2, "Side", 1, 1, 2);
    addReader(3, "Back", 1, 5, 1);
    addDailyProgram(*library, {"Office", {"08:00-12:00", "13:00-18:00"}});  // 2
    addDailyProgram(*library, {"Summer", {"07:00-14:00"}});                 // 3
    addWeeklyProgram(*library, "C", {"Day", {"2", "2", "2", "2", "2", "0", "0"}, "Office"});
    addWeeklyProgram(*library, "C", {"Night", {"1"}, "1"});
    addWeeklyProgram(*library, "E", {"Lamps", {"Office"}, "0"});
    addGroup(*library, "Staff");
    grantDoors(*library, "Staff", {"Front", "Side"}, "Day");
    addLift(*library, {"Top", "Local", "1", "3"});
    grantLift(*library, "Staff", "Top");
    addCard(*library, {"Ann", "12", "4711", "Staff"});
    forgetMarks();
  }

  void forgetMarks() {
    for (const char* mark : {"WeeklyPrograms set WeeklyProgramFlagD", "DailyPrograms set DailyProgramFlagD",
                             "Holidays set HolidayFlagD", "AccGroupReaders set FlagD",
                             "AccessGroups set FlagD", "Cardholders set CardCodeFlagD"}) {
      db().execute(std::string("update ") + mark + " = False");
    }
  }
  std::string count(const char* rows) { return query(std::string("select count(*) from ") + rows); }
  /// What the call is refused with; "done" when it is not.
  static std::string refusal(const std::function<void()>& call) {
    try {
      call();
    } catch (const Refusal& refused) {
      return refused.what();
    }
    return "done";
  }
  static bool has(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }
};

TEST_F(TimesAndGroupsTest, AProgramInUseGoesOnlyWhenAnotherTakesItsPlace) {
  std::string why = refusal([&] { deleteDailyProgram(*library, "office"); });
  EXPECT_TRUE(has(why, "C1 (Day) on Mon-Fri, holidays")) << why;
  EXPECT_TRUE(has(why, "E1 (Lamps) on Mon-Sun")) << why;
  for (const char* id : {"0", "1", "Office"}) {
    EXPECT_NE(refusal([&] { deleteDailyProgram(*library, id, "Office"); }), "done") << id;
  }
  EXPECT_EQ(deleteDailyProgram(*library, "Office", "summer").size(), 2U);
  EXPECT_EQ(count("WeeklyPrograms where WeeklyProgramFlagD = True"), "2");
  EXPECT_EQ(findWeeklyProgram(*library, "C", "Day").weekText(),
            "Mon-Fri Summer 07:00-14:00, Sat-Sun Never, holidays Summer 07:00-14:00");
  EXPECT_EQ(count("DailyPrograms"), "3");

  grantDoor(*library, "Staff", "Side", "Night");
  EXPECT_EQ(doorText(findGroup(*library, "Staff").doors.back()), "Side (stays shut)");
  db().execute("update Readers set WeeklyProgNum = 1 where Id = 3");
  forgetMarks();
  why = refusal([&] { deleteWeeklyProgram(*library, "C", "Day"); });
  EXPECT_TRUE(has(why, "access group Staff at Front\n")) << why;
  EXPECT_TRUE(has(why, "the door itself of Back")) << why;
  EXPECT_NE(refusal([&] { deleteWeeklyProgram(*library, "C", "Day", "Lamps"); }), "done");
  EXPECT_NE(refusal([&] { deleteWeeklyProgram(*library, "C", "0", "Night"); }), "done");
  EXPECT_EQ(count("Cardholders where CardCodeFlagD = True"), "0");
  EXPECT_EQ(deleteWeeklyProgram(*library, "C", "Day", "Night").beside,
            std::vector<std::string>{"access group Staff: Side opens now, and stayed shut before"});
  EXPECT_EQ(doorText(findGroup(*library, "Staff").doors.back()), "Side (Night)");
  EXPECT_EQ(count("AccGroupReaders where FlagD = True and WeeklyProgNum = 2"), "1");
  EXPECT_EQ(count("Cardholders where CardCodeFlagD = True"), "1");
  EXPECT_EQ(query("select WeeklyProgNum from Readers where Id = 3"), "2");
}

TEST_F(TimesAndGroupsTest, AnotherNameIsSentToNobodyAndAnotherDayIs) {
  addHoliday(*library, "Strike", "03/05/2027", false);
  addHoliday(*library, "Leap", "29/02/2024", true);
  addHoliday(*library, "Eve", "24/12/2020", true);
  addHoliday(*library, "Past", "01/12/2026", false);
  forgetMarks();
  changeDailyProgram(*library, "Office", {.name = "Hours"});
  changeWeeklyProgram(*library, "C", "Day", {.name = "Days"});
  changeHoliday(*library, "Strike", {.name = "Walk"});
  renameGroup(*library, "Staff", "STAFF");
  EXPECT_EQ(count("WeeklyPrograms where WeeklyProgramFlagD = True"), "0");
  EXPECT_EQ(count("DailyPrograms where DailyProgramFlagD = True"), "0");
  EXPECT_EQ(count("Holidays where HolidayFlagD = True"), "0");
  EXPECT_NE(refusal([&] { changeHoliday(*library, "Walk", {.date = "01/01/2090"}); }), "done");
  EXPECT_NE(refusal([&] { changeHoliday(*library, "Leap", {.date = "01/01/2000", .eachYear = false}); }),
            "done");
  changeHoliday(*library, "Walk", {.date = "2027-05-04"});
  EXPECT_EQ(query("select Id from Holidays where HolidayFlagD = True"), "1") << "it keeps its slot";
  std::string days;
  for (const HolidayRow& holiday : holidaysByDay(*library)) {
    days += holiday.name + " " + (holiday.day.isNull() ? "over" : holiday.day.toText()) + ", ";
  }
  EXPECT_EQ(days, "Eve 24/12/2026, Walk 04/05/2027, Leap 29/02/2028, Past over, ");
  EXPECT_EQ(holidaysByDay(*library, 2026).size(), 2U) << "a year has its leap days alone";
}

TEST_F(TimesAndGroupsTest, SeveralDoorsAreGrantedAndRevokedAsOne) {
  EXPECT_NE(refusal([&] { grantDoors(*library, "Staff", {"Back", "Bck"}, "Day"); }), "done");
  EXPECT_NE(refusal([&] { revokeDoors(*library, "Staff", {"Front", "Back"}); }), "done");
  EXPECT_EQ(count("AccGroupReaders where AccessGroupId = 1"), "2");
  driver.resultFile = "2XXXXXXXXXXXXXXX";
  EXPECT_NE(refusal([&] { revokeDoors(*library, "Staff", {"Side", "Front"}); }), "done");
  EXPECT_EQ(count("AccGroupReaders where AccessGroupId = 1"), "2") << "it has to erase the card first";
  driver.resultFile = "1XXXXXXXXXXXXXXX";
  driver.calls.clear();
  revokeDoors(*library, "Staff", {"Side", "side"});
  EXPECT_EQ(driver.sent(), "") << "it keeps a door";
  grantDoor(*library, "Staff", "Side", "Day");
  revokeDoors(*library, "Staff", {"Side", "Front"});
  EXPECT_TRUE(driver.sent().starts_with("090012")) << driver.sent();
  EXPECT_EQ(count("AccGroupReaders where AccessGroupId = 1"), "0");
}

TEST_F(TimesAndGroupsTest, ACopyOpensTheSameDoorsAndWhatCardsGainIsTold) {
  copyGroup(*library, "Staff", "Crew");
  EXPECT_THROW(copyGroup(*library, "Staff", "crew"), Refusal);
  const GroupRow crew = findGroup(*library, "Crew");
  EXPECT_TRUE(gainsOf(findGroup(*library, "Staff"), crew).empty());
  EXPECT_EQ(crew.doors.size() + crew.lifts.size(), 3U);
  EXPECT_FALSE(crew.cards > 0 || crew.toSend);
  grantDoor(*library, "Crew", "Back", "Night");
  revokeLift(*library, "Crew", "Top");
  EXPECT_EQ(listGroups(*library, "back").size(), 1U);
  EXPECT_TRUE(has(refusal([&] { deleteGroup(*library, "Staff"); }), "by:\n  1 card\n"));
  driver.resultFile = "1XXX1XXXXXXXXXXX";
  EXPECT_EQ(deleteGroup(*library, "Staff", "Crew").gains, std::vector<std::string>{"Back (Night)"});
}

}  // namespace
}  // namespace voxa
