#include "work/carry_out.h"

#include "comm/com.h"
#include "controllers/ledger.h"
#include "support/installation_test.h"
#include "work/controllers.h"
#include "work/refusal.h"

namespace voxa::test {
namespace {

/// Controllers 1 and 2 of the local line, one of a dial-up line; card 7 of the group of all three doors,
/// under weekly program C 1.
class CarryOutTest : public InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    addStation(2, "Away", false);
    db().execute("update Stations set Phone = '555', ModemIniFile = 'm.ini' where Id = 2");
    addReader(1, "Front", 1, 1, 1);
    addReader(2, "Back", 1, 2, 1);
    addReader(3, "Far", 2, 4, 2);
    db().execute(
        "insert into WeeklyPrograms (ProgType, ProgNum, Name, DailyProgDay1, DailyProgDay2, DailyProgDay3, "
        "DailyProgDay4, DailyProgDay5, DailyProgDay6, DailyProgDay7, DailyProgHolidays) values ('C', 1, "
        "'Week', 1, 1, "
        "1, 1, 1, 0, 0, 0)");
    db().execute("insert into AccessGroups (Id, Name) values (1, 'Staff')");
    for (const char* reader : {"1", "2", "3"}) grant(reader);
    addCard(7);
    driver.resultFiles = {{1, "11"}, {2, "XXX1"}};
  }
  void grant(const std::string& reader) {
    db().execute(
        "insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum) values (1, " +
        reader + ", 'C', 1)");
  }
  void addCard(int number) {
    const std::string text = std::to_string(number);
    db().execute(
        "insert into Cardholders (CardNum, Name, CardCode, AccessGroupId, CardCodeFlagD, CreditFlagD, "
        "Credit) "
        "values (" +
        text + ", 'Holder " + text + "', '10" + text + "', 1, True, True, 5)");
  }
  CarriedOutPlan carry(bool dial = true, const PlanScope& scope = {}) {
    driver.calls.clear();
    return carryOut(*library, {scope, dial, false});
  }
  /// The command files that a controller was sent, with "|" for each line end.
  std::string sentTo(std::int16_t station, std::int16_t address) {
    std::string all;
    for (const auto& call : driver.calls) {
      if (call.command == CmSendCommand && call.station == station && call.address == address + 40)
        all += oneLine(call.commandFile) + " ";
    }
    return all;
  }
  std::string marks() {
    return query("select count(*) from Cardholders where CardCodeFlagD = true or CreditFlagD = true");
  }
  static std::string missing(const CarriedOutPlan& carried) {
    std::string all;
    for (const CarriedOut& controller : carried.controllers) {
      for (const PlanItem& item : controller.missing) {
        all += std::to_string(controller.place.station) + "/" + std::to_string(controller.place.address) +
               " " + voxa::textOf(item.action) + " " + nameOf(item.kind, item.number) + ": " +
               voxa::textOf(item.reason) + "|";
      }
    }
    return all;
  }
};

TEST_F(CarryOutTest, EachControllerGetsWhatItMissesAndTheMarksGoWhenAllHaveIt) {
  library->ledger().replace({1, 1}, false);  // what the new ledger assumes
  library->ledger().replace({1, 2}, false);
  library->ledger().replace({2, 4}, false);
  driver.resultFiles[1] = "1X";
  driver.answer = [](const auto& call) { return static_cast<std::int16_t>(call.address == 42 ? 2 : 100); };
  const CarriedOutPlan first = carry(false);
  EXPECT_EQ(sentTo(1, 1),
            "31010000240024002400|32010101010101000000|| "
            "090007     107|33000701|1700070|1900070000|4900070|350007000000|36000705|| 1600071|| ");
  EXPECT_EQ(sentTo(1, 2) + sentTo(2, 4), "");
  EXPECT_EQ(first.controllers[1].outcome, Outcome::silent);
  EXPECT_EQ(first.controllers[2].reason, "its line is hung up, and was not to be called");
  EXPECT_EQ(marks(), "1") << "not everybody has it";

  driver.resultFiles[1] = "11";
  answerAll(100);
  const CarriedOutPlan second = carry();
  EXPECT_EQ(missing(second), "");
  EXPECT_EQ(sentTo(1, 1), "") << "its credit is counted on, and not sent again";
  EXPECT_NE(sentTo(2, 4).find("1700071||"), std::string::npos);
  EXPECT_EQ(driver.count(CmConnect) + 10 * driver.count(CmDisconnect), 11U);
  EXPECT_EQ(query("select Active from Stations where Id = 2"), "False");
  EXPECT_EQ(marks(), "0");
  EXPECT_EQ(carry().controllers[0].outcome, Outcome::unchanged);
  EXPECT_EQ(driver.calls.size(), 0U);

  db().execute("update Cardholders set CreditFlagD = True");  // the same credit once more
  (void)carry();
  EXPECT_EQ(sentTo(1, 1), "36000705|| ");
  EXPECT_EQ(marks(), "0");
}

TEST_F(CarryOutTest, ACardOfWhichSeveralThingsChangeIsShutUntilAllAreThere) {
  ASSERT_TRUE(carry().isComplete());
  db().execute("insert into AccessGroups (Id, Name) values (2, 'Night')");
  addCard(8);
  db().execute("update Cardholders set PINCode = 42, AccessGroupId = 2 where CardNum = 7");
  db().execute(
      "insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum) values (2, 1, "
      "'C', 0)");
  driver.answer = [](const auto& call) {
    const bool bad = call.command == CmSendCommand && call.commandFile.find("33000700") != std::string::npos;
    return static_cast<std::int16_t>(bad ? 4 : 100);
  };
  const CarriedOutPlan carried = carry();
  const std::string sent = sentTo(1, 1);
  EXPECT_TRUE(sent.starts_with("1600070|| ")) << sent;
  EXPECT_EQ(sent.find("1600071"), std::string::npos) << "opened with its old program: " << sent;
  EXPECT_NE(sent.find("1600081"), std::string::npos) << "the neighbour is kept back: " << sent;
  EXPECT_EQ(sentTo(1, 2).substr(0, 17), "09000700000000|| ");  // it left the group
  ASSERT_EQ(carried.controllers[0].refused.size(), 1U);
  EXPECT_TRUE(carried.controllers[0].refused[0].starts_with("card 7"));
  EXPECT_TRUE(missing(carried).starts_with("1/1 send again card 7: answer lost|"));
  answerAll(100);
  EXPECT_TRUE(carry().isComplete());
}

TEST_F(CarryOutTest, WhatNoLineTakesAwayIsErasedWithTheCard) {
  db().execute(
      "insert into Alarms (Id, Num, Type, Name, StationId, ControllerAddress) values (1, 6, 'M', 'Top', 1, "
      "1)");
  db().execute("insert into LiftGroup (AccessGroup, LiftNum) values (1, 1)");
  ASSERT_TRUE(carry().isComplete());
  db().execute("delete from LiftGroup");
  const WholePlan plan = planAll(*library, {});
  ASSERT_EQ(plan.controllers[0].plan.items.size(), 1U);
  EXPECT_TRUE(plan.controllers[0].plan.items[0].creditAnew);
  ASSERT_TRUE(carry().isComplete());
  EXPECT_TRUE(sentTo(1, 1).starts_with("09000700000000|| 090007     107|"));
  // One that was at work elsewhere may hold any number.
  noteReplaced(*library, "Local", "2", true);
  ASSERT_TRUE(carry().isComplete());
  EXPECT_NE(sentTo(1, 2).find("09999900000000|"), std::string::npos);
  EXPECT_NE(sentTo(1, 2).find("3420000000|"), std::string::npos);
  (void)carry();
  EXPECT_EQ(driver.calls.size(), 0U);
}

TEST_F(CarryOutTest, NothingIsLearntWithoutALineAndNothingIsToldInAnotherForm) {
  ASSERT_TRUE(carry().isComplete());
  db().execute("update Cardholders set Validated = False, ValidatedFlagD = True");
  library->Com().inhibitCom = true;
  EXPECT_FALSE(carry().isComplete());
  EXPECT_EQ(driver.calls.size(), 0U);
  EXPECT_EQ(query("select count(*) from Cardholders where ValidatedFlagD = true"), "1");
  library->Com().inhibitCom = false;
  library->Com().pDailyPrograms4Zones = 1;
  EXPECT_THROW(carry(), Refusal);
  EXPECT_TRUE(carryOut(*library, {{}, true, true}).isComplete());
  EXPECT_NE(sentTo(1, 1).find("3101000024002400240024002400"), std::string::npos);
  // What stays up when a process is killed is hung up by whoever sends next.
  library->ledger().noteCall(2);
  db().execute("update Stations set Active = True where Id = 2");
  restart();
  static_cast<Paths&>(glob->Com()) = {folder + "\\KRV.mdb", "", "", folder};
  ASSERT_EQ(library->QDB().openCommonDB(), 0);
  library->Com().pDailyPrograms4Zones = 1;
  (void)carry(false);
  EXPECT_EQ(driver.count(CmDisconnect), 1U);
  EXPECT_EQ(query("select Active from Stations where Id = 2"), "False");
}

}  // namespace
}  // namespace voxa::test
