#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>

#include "access/cardholder.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "comm/inter.h"
#include "controllers/ledger.h"
#include "controllers/ledger_view.h"
#include "files/command_file.h"
#include "support/installation_test.h"
#include "work/carry_out.h"
#include "work/refusal.h"

namespace voxa {
namespace {

// Card 7 of Staff opens Front (controller 1) and Back (controller 2) under week 1, which is day program 2.
// Everything is sent and acknowledged.
class PlanFaultsTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    ASSERT_TRUE(library->ledger().open());
    addReader(1, "Front", 1, 1, 1);
    addReader(2, "Back", 1, 2, 1);
    driver.resultFiles = {{1, "11"}};
    db().execute("insert into AccessGroups (Id, Name) values (5, 'Staff')");
    for (const char* id : {"2", "3", "4"})
      db().execute(std::string("insert into DailyPrograms (Id, Name, StartFirstInterval, EndFirstInterval, "
                               "StartSecondInterval, EndSecondInterval) values (") +
                   id + ", 'D" + id + "', '08:00', '12:0" + id + "', '13:00', '17:00')");
    weekly(1);
    weekly(9);
    for (const int reader : {1, 2}) grant(reader, 5);
    card(7);
    carry();
  }
  void weekly(int number) {
    const std::string n = std::to_string(number);
    db().execute(
        "insert into WeeklyPrograms (ProgType, ProgNum, Name, DailyProgDay1, DailyProgDay2, DailyProgDay3, "
        "DailyProgDay4, DailyProgDay5, DailyProgDay6, DailyProgDay7, DailyProgHolidays) values ('C', " +
        n + ", 'W" + n + "', 2, 2, 2, 2, 2, 2, 2, 2)");
  }
  void grant(int reader, int group) {
    db().execute(
        "insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum) values (" +
        std::to_string(group) + ", " + std::to_string(reader) + ", 'C', 1)");
  }
  void card(int number, const std::string& columns = "", const std::string& values = "") {
    const std::string n = std::to_string(number);
    db().execute("insert into Cardholders (CardNum, Name, CardCode, AccessGroupId" + columns + ") values (" +
                 n + ", 'C" + n + "', '47" + n + "', 5" + values + ")");
  }
  void set(const std::string& columns) {
    db().execute("update Cardholders set " + columns + " where CardNum = 7");
  }
  CarriedOutPlan carry(const CarryOut& how = {}) {
    driver.calls.clear();
    return carryOut(*library, how);
  }
  // Command files as "controller<lines> ".
  std::string sent() {
    std::string all;
    for (const auto& call : driver.calls) {
      if (call.command == CmSendCommand)
        all += std::to_string(call.address - 40) + "<" + oneLine(call.commandFile) + "> ";
    }
    return all;
  }
  bool sends(const std::string& text) { return sent().find(text) != std::string::npos; }
  std::string carried(const std::string& columns) {
    set(columns);
    carry();
    return sent();
  }
  void raw(int address, const std::vector<std::string>& lines) {
    library->CommandFile().write(lines);
    (void)Inter(*library).sendCommand(1, static_cast<std::int16_t>(address + 40));
  }
  void refuse(const std::string& line) {
    driver.answer = [line](const test::RecordingDriver::Call& call) -> std::int16_t {
      return call.commandFile.find(line) != std::string::npos ? std::int16_t{4} : std::int16_t{100};
    };
  }
  // Rows that relations forbid, as an imported file may have them.
  void withoutRelations(const std::string& sql) { plain(folder + "/KRV.mdb", sql); }
  void beginNewLedger(const std::string& content = "") {
    glob.reset();
    library.reset();
    for (const char* file : {"/Ledger.MDB", "/Ledger.MDB-wal", "/Ledger.MDB-shm"})
      (void)std::remove((folder + file).c_str());
    if (!content.empty()) write(folder + "/Ledger.MDB", content);
    restart();
    glob->Initialize(folder + "\\KRV.mdb", folder + "\\S001.ini", folder + "\\COM.LOG", folder);
  }
};

TEST_F(PlanFaultsTest, AControllerWithoutReadersOrWithReadersOfTwoTypesLosesWhatItMayNotHave) {
  db().execute("update Readers set ControllerAddress = 5 where Id = 2");
  // It falls silent while it is sent to. No test of the line asks it, so it is asked by itself again.
  driver.resultFiles = {{1, "1XXX1"}};
  int asked = 0;
  driver.answer = [&asked](const auto& call) {
    return static_cast<std::int16_t>(call.address == 42 && ++asked > 1 ? 3 : 100);
  };
  carry();
  answerAll(100);
  carry();
  EXPECT_TRUE(sends("2<09000700000000||>")) << sent();
  addReader(3, "Side", 1, 1, 2);
  db().execute("update Readers set ControllerType = 'VRMD1' where Id = 3");
  set("PINCode = 1234, PINCodeFlagD = True");
  EXPECT_FALSE(carry().isComplete());
  EXPECT_FALSE(sends("1<"));
  EXPECT_EQ(query("select PINCodeFlagD from Cardholders"), "True");
  EXPECT_NE(carried("Validated = False").find("1<09000700000000||>"), std::string::npos);
}

TEST_F(PlanFaultsTest, WhereNoControllerIsNothingIsMissedAndAGroupThatNobodyCanBeToldOfKeepsItsMarks) {
  driver.answer = [](const test::RecordingDriver::Call& call) -> std::int16_t {
    return call.address == 49 ? std::int16_t{2} : std::int16_t{100};
  };
  raw(9, {"0900071234567?"});
  EXPECT_TRUE(carry().isComplete());
  db().execute("insert into Holidays (Id, Name, [Date], EachYear) values (25, 'W', #12/25/2026#, True)");
  EXPECT_FALSE(carry().isComplete());  // one slot more than a controller of this type has
  db().execute("update Readers set ControllerType = 'VRMD1' where Id = 2");
  EXPECT_TRUE(carry().isComplete());
  addReader(3, "Side", 1, 17, 1);
  grant(3, 5);
  set("PINCode = 1234, PINCodeFlagD = True");
  EXPECT_FALSE(carry().isComplete());
  EXPECT_EQ(query("select PINCodeFlagD from Cardholders"), "True");
}

TEST_F(PlanFaultsTest, ABlockedCardIsShutThoughItsRowCannotBeRight) {
  const std::string shut = "1<1600070||> 2<1600070||> ";
  EXPECT_EQ(carried("PINCode = 12000"), "");
  EXPECT_EQ(carried("Validated = False"), shut);
  EXPECT_EQ(carried("Validated = False"), "");
  carried("Validated = True, PINCode = 1");
  EXPECT_EQ(carried("ValidationDate = #2/29/2000#"), shut);
  carried("ValidationDate = null");
  db().execute("insert into Cardholders (CardNum, Name, AccessGroupId) values (7, 'Twin', 5)");
  EXPECT_EQ(carried("Supervisor = True"), "");
  db().execute("update Cardholders set Validated = False where Name = 'Twin'");
  carry();
  EXPECT_EQ(sent(), shut);
  db().execute("delete from Cardholders where Name = 'Twin'");
  carry();
  db().execute(
      "insert into Alarms (Id, Num, Type, Name, StationId, ControllerAddress) values (1, 100, 'M', 'L', 1, "
      "1)");
  db().execute("insert into LiftGroup (AccessGroup, LiftNum) values (5, 1)");
  EXPECT_EQ(carried("Validated = False"), shut);
}

TEST_F(PlanFaultsTest, TimesThatMixAreNotSentUnderACardThatCouldNotBeShut) {
  const auto mix = [&](const char* end) {
    db().execute(std::string("update DailyPrograms set EndFirstInterval = '") + end + "' where Id = 2");
  };
  card(8);
  carry();
  // A blocked card that could not be shut does not get the new times of others either.
  mix("10:30");
  refuse("1600070");
  EXPECT_EQ(carried("Validated = False").find("3102"), std::string::npos) << sent();
  answerAll(100);
  carried("Validated = True");
  db().execute("update WeeklyPrograms set DailyProgDay1 = 3 where ProgNum = 1");
  mix("11:00");
  refuse("1600070");
  carry();
  EXPECT_FALSE(sends("3102") || sends("3201")) << sent();
  EXPECT_TRUE(sends("1<1600081||>")) << sent();  // its neighbour opens under the old times again
  set("Deleted = True");
  refuse("0900070");
  carry();
  EXPECT_FALSE(sends("3102") || sends("3201")) << sent();
  answerAll(100);
  // Its row cannot be right: it is shut meanwhile, and gets back what it had.
  carried("Deleted = False");
  db().execute("update WeeklyPrograms set DailyProgDay2 = 3 where ProgNum = 1");
  mix("11:30");
  carried("PINCode = 12000");
  EXPECT_TRUE(sent().starts_with("1<1600070|1600080||> 1<3102") && sends("1600071|1600081||>")) << sent();
  carried("PINCode = 1");
  withoutRelations("update WeeklyPrograms set DailyProgDay7 = 100 where ProgNum = 1");
  mix("10:00");
  db().execute("insert into Holidays (Id, Name, [Date], EachYear) values (1, 'W', #12/25/2026#, True)");
  carry();
  EXPECT_TRUE(sent().starts_with("1<1600070|1600080||> 1<3102")) << sent();
  EXPECT_FALSE(sends("1600071"));
}

TEST_F(PlanFaultsTest, ACardWhoseRowCannotBeRightOpensOnlyWhatItsGroupStillGrants) {
  const auto grant = [&](const char* what) {
    return "update AccGroupReaders set " + std::string(what) + " where AccessGroupId = 5 and ReaderId = 1";
  };
  carry();
  db().execute(grant("WeeklyProgNum = 9"));
  EXPECT_EQ(carried("PINCode = 12000"), "1<1600070||> ") << sent();
  EXPECT_EQ(carried("PINCode = 12001"), "");
  db().execute(grant("WeeklyProgNum = 1"));
  EXPECT_NE(carried("PINCode = 1").find("1600071"), std::string::npos) << sent();
  // Another code is another badge: the one before may be lost.
  EXPECT_EQ(carried("PINCode = 12000, CardCode = '4711'"), "1<1600070||> 2<1600070||> ") << sent();
  EXPECT_NE(carried("PINCode = 1, CardCode = '477'").find("1600071"), std::string::npos) << sent();
  EXPECT_EQ(carried("PINCode = 12000, ValidationDate = #12/31/2027#"), "1<1600070||> 2<1600070||> ");
  EXPECT_NE(carried("PINCode = 1").find("1600071"), std::string::npos) << sent();
  db().execute("delete from AccGroupReaders where ReaderId = 1");
  EXPECT_NE(carried("PINCode = 12000").find("0900070"), std::string::npos) << sent();
}

TEST_F(PlanFaultsTest, ACardWithoutItsTimesIsOnlyShutWhenItWouldOpenOtherwise) {
  db().execute("update WeeklyPrograms set DailyProgDay1 = 3 where ProgNum = 1");
  db().execute("update DailyPrograms set EndFirstInterval = '11:00' where Id = 2");
  CarryOut one;
  one.scope.card = 7;
  carry(one);
  EXPECT_EQ(sent(), "");
  set("PINCode = 5, Credit = 3");
  carry(one);
  EXPECT_TRUE(sent().ends_with("2<1600071||> ")) << sent();
  for (const char* change : {"CardCode = '99'", "ValidationDate = #12/31/2027#"}) {
    set(change);
    EXPECT_FALSE(carry(one).isComplete());
    EXPECT_TRUE(sends("1600070") && !sends("1600071")) << change << sent();
    EXPECT_TRUE(carry().isComplete());
    db().execute("update DailyPrograms set EndFirstInterval = '10:00' where Id = 2");
  }
  EXPECT_TRUE(carry().isComplete());
  // Nor under a program that it did not have, while a holiday is still to be erased.
  db().execute("insert into Holidays (Id, Name, [Date], EachYear) values (1, 'H', #12/25/2027#, True)");
  EXPECT_TRUE(carry().isComplete());
  db().execute("delete from Holidays");
  db().execute("update AccGroupReaders set WeeklyProgNum = 9");
  carry(one);
  EXPECT_TRUE(sends("1600070") && !sends("1600071")) << sent();
  one.scope.card = 10'001;
  EXPECT_THROW(carry(one), Error);
}

TEST_F(PlanFaultsTest, WhatRawLinesLeftIsGoneBeforeTheCodeArrives) {
  raw(1, {"1600081", "33000800"});
  raw(2, {"37000805", "330007:;"});
  card(8, ", Validated", ", False");
  EXPECT_TRUE(carry().isComplete());
  EXPECT_LT(sent().find("1<09000800000000"), sent().find("1<090008     478"));
  EXPECT_LT(sent().find("2<09000800000000"), sent().find("2<090008     478"));
  carry();
  EXPECT_EQ(sent(), "");
}

TEST_F(PlanFaultsTest, AProgramThatHasNoRowOpensNothing) {
  const auto addWith = [&](int number, const std::string& sql) {
    withoutRelations(sql);
    card(number);
    EXPECT_FALSE(carry().isComplete());
    EXPECT_FALSE(sends("16000" + std::to_string(number) + "1")) << sent();
  };
  addWith(8,
          "update WeeklyPrograms set DailyProgDay7 = 4 where ProgNum = 1; delete from DailyPrograms where Id "
          "= 4");
  addWith(9, "update AccGroupReaders set WeeklyProgNum = 9; delete from WeeklyPrograms where ProgNum = 9");
}

TEST_F(PlanFaultsTest, ANewLedgerTakesNothingForGoneThatMayBeThere) {
  db().execute("insert into AccessGroups (Id, Name) values (6, 'Other')");
  grant(1, 6);
  card(8);
  carry();
  set("AccessGroupId = 6, AccessGroupIdFlagD = True");  // by a system that kept no ledger
  db().execute("update Cardholders set PINCode = 12000 where CardNum = 8");
  beginNewLedger();
  db().execute("update Cardholders set Deleted = True where CardNum = 8");
  carry();
  EXPECT_TRUE(sends("1<09000700000000|09000800000000||>") && sends("2<09000700000000|09000800000000||>"))
      << sent();
  // A damaged one had known of a card whose row is gone.
  db().execute("delete from Cardholders");
  beginNewLedger("rubbish");
  carry();
  EXPECT_TRUE(sends("1<09000100000000|") && sends("|09999900000000|")) << sent().substr(0, 99);
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(PlanFaultsTest, WithoutTheRowsOrTheLinesNothingIsPlannedOrSent) {
  db().execute("insert into Holidays (Id, Name, [Date], EachYear) values (1, 'W', #12/25/2026#, True)");
  carry();
  const Planner planner(*library, {});
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open((folder + "/KRV.mdb").c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  watched.engine = nullptr;
  EXPECT_THROW((void)library->ledger().look([&](LedgerView& ledger) { (void)planner.places(ledger); }),
               Error);
  sqlite3_close(other);
  set("Deleted = True");
  library->lineLock().patience = {};
  const int another = ::open((folder + "/voxa.lck").c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_EQ(::flock(another, LOCK_EX | LOCK_NB), 0);
  EXPECT_THROW(carry(), Error);
  ::close(another);
  {
    const Transaction transaction(*engine, db());
    EXPECT_THROW(carry(), Refusal);
  }
  EXPECT_EQ(sent(), "");
  library->Com().inhibitCom = true;
  carried("Deleted = False, PINCodeFlagD = True");
  EXPECT_EQ(query("select PINCodeFlagD from Cardholders"), "True");
}

TEST_F(PlanFaultsTest, AMarkedCreditReachesEachControllerOnceWhoeverSendsIt) {
  CarryOut one;
  one.scope.places = std::set<ControllerPlace>{{1, 1}};
  set("Credit = 5, CreditFlagD = True");
  carry(one);
  EXPECT_EQ(sent(), "1<36000705||> ");
  EXPECT_EQ(query("select CreditFlagD from Cardholders"), "True");
  carry();
  EXPECT_EQ(sent(), "2<36000705||> ");
  // An older download gives the next one, and clears its mark; the one behind that is sent again.
  set("CreditFlagD = True");
  carry(one);
  (void)library->QDB().Cardholders().generalDownload(CTActiveStations, "", DLDefault);
  set("CreditFlagD = True");
  carry();
  EXPECT_EQ(sent(), "1<36000705||> 2<36000705||> ");
}

}  // namespace
}  // namespace voxa
