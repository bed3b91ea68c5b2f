#include <gtest/gtest.h>

#include "access/access_group.h"
#include "access/card_doors.h"
#include "access/cardholder.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "platform/error.h"
#include "platform/files.h"
#include "programs/daily_program.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

class CardsTest : public test::InstallationTest {
 protected:
  // Group 1 opens 1/1 (door 1, program 3) and 2/5 (door 2, program 3); station 3 with 3/1 is not in use.
  void SetUp() override {
    createInstallation();
    addStation(2, "Annex");
    addStation(3, "Dark", false);
    addReader(1, "Front", 1, 1, 1);
    addReader(2, "Back", 2, 5, 2);
    addReader(3, "Cellar", 3, 1, 1);
    db().execute("insert into AccessGroups (Id, Name) values (1, 'Staff')");
    program("C", 3);
    program("C", 4);
    grant(1, 1, 3);
    grant(1, 2, 3);
    driver.calls.clear();
  }
  void program(const char* type, int number) {
    const std::string n = std::to_string(number);
    db().execute("insert into WeeklyPrograms (ProgType, ProgNum, Name) values ('" + std::string(type) +
                 "', " + n + ", 'P" + n + "')");
  }
  void grant(int group, int reader, int programNumber) {
    db().execute("insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgNum) values (" +
                 std::to_string(group) + ", " + std::to_string(reader) + ", " +
                 std::to_string(programNumber) + ")");
  }
  void card(int number, const std::string& code, int group, const std::string& flags = "") {
    const std::string n = std::to_string(number);
    db().execute("insert into Cardholders (CardNum, Name, CardCode, AccessGroupId) values (" + n +
                 ", 'Holder " + n + "', '" + code + "', " + std::to_string(group) + ")");
    if (!flags.empty()) db().execute("update Cardholders set " + flags + " where CardNum = " + n);
  }
  Cardholder& cards() { return glob->QDB().Cardholders(); }
  AccessGroup& groups() { return glob->QDB().AccessGroups(); }
  std::string flagged() {
    return query(
        "select count(*) from Cardholders where CardCodeFlagD = True or AccessGroupIdFlagD = True or "
        "ValidatedFlagD = True or PINCodeFlagD = True or CreditFlagD = True or ValidationDateFlagD = True");
  }
  /// Cards that batches left behind, "station/address: numbers" in lines.
  std::string unfinished() {
    std::string all;
    for (const UnfinishedCards& cards : library->ledger().unfinished()) {
      all += std::to_string(cards.place.station) + "/" + std::to_string(cards.place.address) + ":";
      for (const std::int32_t number : cards.numbers) all += " " + std::to_string(number);
      all += "\n";
    }
    return all;
  }
  std::string sentTo(int station) {
    std::string all;
    for (const auto& call : driver.calls) {
      if (call.station == station) all += call.commandFile;
    }
    return all;
  }
};

TEST_F(CardsTest, EachFlaggedPartIsALine) {
  card(
      12, "12AB", 1,
      "CardCodeFlagD = True, AccessGroupIdFlagD = True, ValidatedFlagD = True, PINCode = 42, PINCodeFlagD = "
      "True, Supervisor = True, SupervisorFlagD = True, ValidationDate = #12/24/2026#, ValidationDateFlagD = "
      "True, Credit = 7, CreditFlagD = True");
  db().execute(
      "insert into Alarms (Id, Num, Type, Name, StationId, ControllerAddress) values (9, 4, 'M', 'L', 1, 1)");
  db().execute("insert into LiftGroup (AccessGroup, LiftNum) values (1, 9)");
  db().execute("update Readers set ControllerType = 'VRMD1' where Id = 2");
  EXPECT_EQ(cards().download(1), 0);
  EXPECT_EQ(sentTo(1),
            "090012    12:;\r\n33001203\r\n1600121\r\n1700120\r\n1900120042\r\n490012\r\n350012241226\r\n"
            "36001207\r\n37001204\r\n\r\n");
  EXPECT_EQ(sentTo(2),
            "09;01;0012;    12:;\r\n33;01;0012;03\r\n16;01;0012;0\r\n17;01;0012;1\r\n19;01;0012;0042\r\n"
            "49;01;0012;1\r\n35;01;0012;241226\r\n36;01;0012;07\r\n\r\n");
  EXPECT_EQ(flagged(), "0");
  driver.calls.clear();
  EXPECT_EQ(cards().download(1), 0);
  EXPECT_EQ(driver.sent(), "");

  EXPECT_TRUE(boxes().empty());
}

TEST_F(CardsTest, AValueThatIsNoCardLineIsRefusedAndStaysFlagged) {
  const struct {
    int number;
    const char* code;
    const char* flags;
  } cases[] = {{12345, "1", "CardCodeFlagD = True"}, {8, "8", "PINCode = 12345, PINCodeFlagD = True"}};
  for (const auto& c : cases) {
    card(c.number, c.code, 1, c.flags);
    EXPECT_NE(cards().download(cards().getCardNumId(static_cast<std::int16_t>(c.number))), 0) << c.number;
    EXPECT_EQ(boxes().size(), 1U);
  }
  EXPECT_EQ(flagged(), "2");
  EXPECT_EQ(driver.count(CmSendCommand), 0U);
  EXPECT_EQ(cards().download(99), -1);
  EXPECT_EQ(boxes(), std::vector<std::string>{"Can't find cardholder 99|(Cardholder.downloadI)"});
}

TEST_F(CardsTest, RowsThatCannotBeRightAreRefusedByNameAndStayFlagged) {
  program("E", 3);
  card(1, "1", 1, "CardCodeFlagD = True");
  const struct {
    const char *wrong, *right, *named;
    bool elsewhere;  // the other controller is sent to
  } cases[] = {
      {"update Readers set ControllerAddress = Null where Id = 2",
       "update Readers set ControllerAddress = 5 where Id = 2", "Back has no controller address", true},
      {"update Readers set ControllerAddress = 0 where Id = 2",
       "update Readers set ControllerAddress = 5 where Id = 2", "Back has the controller address 0", true},
      {"update Readers set ControllerAddress = 95 where Id = 2",
       "update Readers set ControllerAddress = 5 where Id = 2", "Back has the controller address 95", true},
      {"update AccGroupReaders set WeeklyProgNum = Null where ReaderId = 2",
       "update AccGroupReaders set WeeklyProgNum = 3 where ReaderId = 2",
       "Staff opens Back by no weekly program", true},
      {"update AccGroupReaders set WeeklyProgType = 'E' where ReaderId = 2",
       "update AccGroupReaders set WeeklyProgType = 'C' where ReaderId = 2",
       "by a weekly program of another family", true},
      {"update Cardholders set CardNum = 0", "update Cardholders set CardNum = 1", "card number 0", false},
      {"update Cardholders set CardNum = Null", "update Cardholders set CardNum = 1", "card number 0", false},
      {"insert into Cardholders (CardNum, Name, CardCode, AccessGroupId) values (1, 'Other', '2', 0)",
       "delete from Cardholders where Name = 'Other'", "the card number 1 is that of Holder 1 and Other",
       false}};
  for (const auto& c : cases) {
    db().execute(c.wrong);
    driver.calls.clear();
    EXPECT_NE(cards().generalDownload(), 0) << c.wrong;
    EXPECT_EQ(driver.sent(), c.elsewhere ? "090001       1\r\n\r\n" : "") << c.wrong;
    EXPECT_EQ(sentTo(2), "") << c.wrong;
    EXPECT_EQ(flagged(), "1") << c.wrong;
    const auto shown = boxes();
    ASSERT_EQ(shown.size(), 1U) << c.wrong;
    EXPECT_NE(shown[0].find(c.named), std::string::npos) << shown[0];
    if (c.elsewhere) {
      driver.calls.clear();
      EXPECT_EQ(cards().createGroup(50, "50", 1, 1), err::invalidArgument);
      EXPECT_EQ(driver.count(CmSendCommand), 0U);
      boxes();
    }
    db().execute(c.right);
  }
  EXPECT_EQ(query("select count(*) from Cardholders"), "1");
}

TEST_F(CardsTest, TwoProgramsOnAControllerKeepTheSecondDoorShut) {
  addReader(4, "Side", 1, 1, 2);
  addReader(5, "Front out", 1, 1, 3);
  grant(1, 4, 4);
  card(1, "1", 1, "AccessGroupIdFlagD = True, ValidatedFlagD = True");
  EXPECT_EQ(cards().download(1), 0);
  EXPECT_EQ(sentTo(1), "33000103\r\n1600011\r\n1700010\r\n\r\n");
  EXPECT_EQ(
      boxes(),
      std::vector<std::string>{
          "Two different weekly programs used on a same controller (access group Staff, Local Controller 1: "
          "Side stays shut)"});
  const auto controller = controllersOf(db(), 1).front();
  EXPECT_EQ(openOtherSides(db(), 1, controller),
            "access group Staff, Local Controller 1: Front out opens too, the other side of a granted door");
  EXPECT_EQ(driver.count(CmSendCommand), 2U);  // one file a controller

  // A reader at position 3 opens the first door, one at 4 the second.
  addReader(6, "Side out", 1, 1, 4);
  db().execute("insert into AccessGroups (Id, Name) values (2, 'Leaving')");
  card(2, "2", 2, "AccessGroupIdFlagD = True, ValidatedFlagD = True");
  grant(2, 6, 4);
  EXPECT_EQ(cards().download(2), 0);
  grant(2, 5, 3);
  EXPECT_EQ(groups().download(2, DLFull), 0);
  EXPECT_TRUE(sentTo(1).find("33000204\r\n1600020\r\n1700021\r\n") != std::string::npos) << sentTo(1);
  EXPECT_TRUE(sentTo(1).ends_with("33000203\r\n1600021\r\n1700020\r\n\r\n")) << sentTo(1);
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(CardsTest, WhatDoesNotArriveEverywhereStaysFlagged) {
  card(1, "1", 1, "CardCodeFlagD = True");
  driver.answer = [](const auto& call) {
    return std::int16_t(call.command == CmSendCommand && call.station == 2 ? 4 : 100);
  };
  EXPECT_EQ(cards().download(1), 4);
  EXPECT_EQ(driver.count(CmSendCommand), 2U);
  EXPECT_EQ(flagged(), "1");
  EXPECT_EQ(boxes().size(), 1U);

  // Skipped with the person's consent.
  driver.answer = [](const auto&) { return std::int16_t{100}; };
  glob->Com().updateDBComStatus(2, 5, -1, {});
  glob->Com().inhibitCom = true;
  EXPECT_EQ(cards().download(1), 0);
  glob->Com().inhibitCom = false;
  EXPECT_EQ(flagged(), "1");
  db().execute("DELETE ComStatus.* FROM ComStatus");

  // A row that was changed while it was sent.
  driver.answer = [&](const auto& call) {
    if (call.command == CmSendCommand && call.station == 2)
      db().execute("update Cardholders set CardCode = '77'");
    return std::int16_t{100};
  };
  EXPECT_EQ(cards().download(1), 0);
  EXPECT_EQ(flagged(), "1");

  driver.answer = [](const auto&) { return std::int16_t{100}; };
  grant(1, 3, 3);
  driver.calls.clear();
  EXPECT_EQ(cards().download(1), 1);
  EXPECT_EQ(sentTo(1) + sentTo(2) + sentTo(3), "090001      77\r\n\r\n090001      77\r\n\r\n");
  EXPECT_EQ(flagged(), "1");
  ASSERT_EQ(prompts.boxes.size(), 1U);
  EXPECT_TRUE(boxes()[0].ends_with("(Dark)"));
}

TEST_F(CardsTest, AGeneralDownloadGoesOnAndAComponentLeavesTheFlags) {
  card(1, "1", 1, "CardCodeFlagD = True");
  card(2, "2", 1, "CardCodeFlagD = True, Deleted = True");
  card(3, "12G", 1, "CardCodeFlagD = True");
  card(4, "4", 1, "CreditFlagD = True");
  EXPECT_EQ(cards().generalDownload(CTReader, "Back"), err::invalidArgument);
  EXPECT_EQ(sentTo(2), "090001       1\r\n\r\n36000400\r\n\r\n");
  EXPECT_EQ(flagged(), "4");
  const auto shown = boxes();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_NE(shown[0].find("Cardholder 3: "), std::string::npos) << shown[0];
  driver.calls.clear();
  EXPECT_EQ(cards().generalDownload(CTActiveStations, "", DLNoMessage), err::invalidArgument);
  EXPECT_EQ(sentTo(1), sentTo(2));
  EXPECT_EQ(flagged(), "2");  // 2 and 3
  EXPECT_TRUE(boxes().empty());
  db().execute("update Cardholders set CardCode = '3' where CardNum = 3");
  driver.calls.clear();
  EXPECT_EQ(cards().generalDownload(static_cast<ComponentType>(3), "", DLFull), err::invalidArgument);
  EXPECT_TRUE(driver.calls.empty());
  EXPECT_EQ(boxes().size(), 1U);
  EXPECT_EQ(cards().generalDownload(CTStation, "Local", DLFull), 0);
  EXPECT_EQ(sentTo(2), "");
  EXPECT_EQ(driver.count(CmSendCommand), 3U);
}

TEST_F(CardsTest, AGroupIsSentWhenItIsMarked) {
  card(1, "1", 1, "PINCodeFlagD = True");
  card(2, "2", 1, "Deleted = True");
  card(3, "3", 1, "Deleted = True, Name = 'Former'");
  card(3, "33", 1);
  EXPECT_EQ(groups().download(1), 0);
  EXPECT_EQ(driver.count(CmSendCommand), 0U);
  // To one reader: what waits for the others keeps waiting.
  EXPECT_EQ(groups().download(1, DLFull, 1), 0);
  EXPECT_EQ(sentTo(1),
            "090001       1\r\n33000103\r\n1600011\r\n1700010\r\n1900010000\r\n\r\n"
            "09000200000000\r\n\r\n"
            "090003      33\r\n33000303\r\n1600031\r\n1700030\r\n\r\n");
  EXPECT_EQ(sentTo(2), "");
  EXPECT_EQ(flagged(), "1");
  EXPECT_EQ(query("select FlagD from AccessGroups where Id = 1"), "False");

  db().execute("update AccessGroups set FlagD = True where Id = 1");
  driver.answer = [](const auto& call) { return std::int16_t(call.command == CmSendCommand ? 4 : 100); };
  EXPECT_EQ(groups().download(1), 4);
  EXPECT_EQ(query("select FlagD from AccessGroups where Id = 1"), "True");
  EXPECT_EQ(flagged(), "3");  // the second deleted card has nothing to send
  EXPECT_EQ(boxes().size(), 1U);
  driver.answer = [](const auto&) { return std::int16_t{100}; };
  EXPECT_EQ(groups().download(1), 0);
  EXPECT_EQ(query("select FlagD from AccessGroups where Id = 1"), "False");
  EXPECT_EQ(flagged(), "0");

  EXPECT_EQ(groups().download(77), -1);
  EXPECT_EQ(boxes(), std::vector<std::string>{"Can't find access group 77|(AccessGroups.download)"});
}

TEST_F(CardsTest, AReaderJoinsTheDefaultGroupAndGetsItsCards) {
  card(1, "1", 0);
  groups().addReaderToDefaultGroup(1);
  EXPECT_EQ(sentTo(1), "090001       1\r\n33000100\r\n1600011\r\n1700010\r\n\r\n");
  const std::string link =
      "select FlagD from AccGroupReaders where AccessGroupId = 0 and WeeklyProgType = 'C'";
  EXPECT_EQ(query(link), "False");
  EXPECT_TRUE(boxes().empty());
  groups().addReaderToDefaultGroup(1);
  EXPECT_EQ(boxes().size(), 1U);
  groups().addReaderToDefaultGroup(3);  // the station is not active: nothing sent, no message
  EXPECT_TRUE(boxes().empty());
  EXPECT_EQ(query(link + " and ReaderId = 3"), "True");
  groups().deleteReaderFromAccessGroups(1);
  EXPECT_EQ(query("select count(*) from AccGroupReaders where ReaderId = 1"), "0");
}

TEST_F(CardsTest, NumbersAndCodesAreLookedUp) {
  EXPECT_EQ(groups().DefaultName(), query("select Name from AccessGroups where Id = 0"));
  EXPECT_EQ(groups().getId("staff"), 1);
  EXPECT_TRUE(boxes().empty());
  EXPECT_EQ(groups().getId("Nobody"), -1);
  EXPECT_EQ(boxes(), std::vector<std::string>{"Can't find access group Nobody|(AccessGroups.getId)"});
  card(1, "00000123", 1);
  card(2, "2", 1, "Deleted = True");
  EXPECT_EQ(cards().getNameByCardNum(1), "Holder 1");
  EXPECT_EQ(cards().getNameByCardNum(2), "");
  EXPECT_FALSE(cards().getCardNumInUse(2));
  EXPECT_EQ(cards().getFreeCardNum(), 3);
  db().execute("update Cardholders set Id = 40000 where CardNum = 1");
  EXPECT_TRUE(cards().getCardNumInUse(1));
  EXPECT_TRUE(cards().getCardCodeInUse(123));
  EXPECT_FALSE(cards().getCardCodeInUse(124));
  EXPECT_EQ(cards().invalidate(12, CTReader, "Back"), 0);
  EXPECT_EQ(cards().delete_(1), 0);
  EXPECT_EQ(sentTo(2), "09001200000000\r\n\r\n09000100000000\r\n\r\n");
  EXPECT_EQ(sentTo(1), "09000100000000\r\n\r\n");
}

TEST_F(CardsTest, ABlockOfCardsIsAllOrNothing) {
  EXPECT_EQ(cards().createGroup(1, "00000100", 2, 1), 0);
  const std::string block =
      "09000100000100\r\n33000103\r\n1600011\r\n1700010\r\n"
      "09000200000101\r\n33000203\r\n1600021\r\n1700020\r\n\r\n";
  EXPECT_EQ(sentTo(1), block);
  EXPECT_EQ(query("select Name from Cardholders where CardNum = 2 and CardCode = '00000101'"), "Card 0002");
  EXPECT_EQ(flagged(), "0");
  db().execute("update Cardholders set Deleted = True where CardNum = 2");
  EXPECT_EQ(cards().createGroup(2, "200", 5, 1), 1);
  EXPECT_EQ(cards().createGroup(10, "90", 11, 1), 1);
  db().execute("update Cardholders set CardNum = 12, CardCode = '00000092' where CardNum = 2");
  EXPECT_EQ(cards().createGroup(10, "90", 2, 1), 0);  // up to its neighbour
  db().execute("delete from Cardholders where CardNum = 10 or CardNum = 11");
  EXPECT_EQ(boxes(), (std::vector<std::string>{"Card number already in use (2)",
                                               "Card code already in use (00000100)"}));
  const struct {
    std::int32_t first;
    const char* code;
    std::int16_t cards;
    std::int16_t group;
    std::int16_t status;
  } refused[] = {{10, "99999999", 2, 1, err::overflow}, {32767, "1", 2, 1, err::overflow},
                 {70000, "1", 1, 1, err::overflow},     {10, "12A", 1, 1, err::typeMismatch},
                 {10, "1", 0, 1, err::invalidArgument}, {10, "1", 1, 55, err::dbRelatedMissing},
                 {9999, "500", 2, 1, err::overflow}};
  for (const auto& r : refused) {
    EXPECT_EQ(cards().createGroup(r.first, r.code, r.cards, r.group), r.status) << r.first << " " << r.code;
    EXPECT_EQ(boxes().size(), 1U);
  }
  // The second controller refuses: the first is cleared of the block again.
  driver.calls.clear();
  driver.answer = [&](const auto& call) {
    const bool batch = engine->inTransaction();
    EXPECT_EQ(batch ? unfinished() : "", "");  // it is under way
    return std::int16_t(call.station == 2 ? 4 : 100);
  };
  EXPECT_EQ(cards().createGroup(30, "30", 2, 1, true), -1);
  EXPECT_TRUE(sentTo(1).ends_with("\r\n\r\n09003000000000\r\n09003100000000\r\n\r\n")) << sentTo(1);
  EXPECT_EQ(boxes().size(), 1U);
  EXPECT_EQ(query("select count(*) from Cardholders"), "2");
  EXPECT_EQ(unfinished(), "2/5: 30 31\n");

  // The second controller, and what killed batches left, are cleared before the next one: 61 has its row.
  // Notes of an earlier version of the system count, too.
  write("CardBlock2.txt", "60,62\r\n1,1\r\n3,1\r\nend\r\n");
  write("CardBlock3.txt", "1,9\r\n1,1\r\n");  // not at its end: nothing was sent
  card(61, "61", 1);

  // As long as the second refuses to erase them, every download says so, and the note stays.
  cards().generalDownload();
  const auto shown = boxes();
  EXPECT_NE(testing::PrintToString(shown).find("(Annex Controller 5  -  Back): 090030 - 0031"),
            std::string::npos)
      << testing::PrintToString(shown);
  EXPECT_EQ(unfinished(), "2/5: 30 31\n3/1: 60 61 62\n");
  driver.calls.clear();

  // A station that is not in use, and a controller that the person goes on without, are caught up with later.
  driver.answer = [](const auto&) { return std::int16_t{100}; };
  grant(1, 3, 3);
  EXPECT_EQ(cards().createGroup(40, "40", 1, 1, true), 0);
  EXPECT_EQ(query("select Name from Cardholders where CardNum = 40 and CardCodeFlagD = True"), "00000040");
  EXPECT_TRUE(sentTo(1).starts_with("090040")) << sentTo(1);  // it was cleared before
  EXPECT_TRUE(sentTo(2).starts_with("09003000000000\r\n09003100000000\r\n\r\n090040")) << sentTo(2);
  EXPECT_EQ(unfinished(), "3/1: 60 61 62\n");  // of the station that is not in use
  for (const char* gone : {"CardBlock2.txt", "CardBlock3.txt"}) EXPECT_FALSE(files::exists(gone)) << gone;
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(CardsTest, AnotherProgramThatChangesTheFileIsWaitedFor) {
  card(1, "1", 1, "CardCodeFlagD = True");
  glob->Com().inhibitCom = true;
  const auto meanwhile = [&](const char* file, const std::function<std::int16_t()>& work) {
    whileChangedElsewhere(file, [&] { EXPECT_EQ(work(), 0); });
    EXPECT_EQ(boxes(), std::vector<std::string>());
  };
  meanwhile("KRV.mdb", [&] { return cards().download(1); });
  EXPECT_EQ(flagged(), "0");
  meanwhile("KRV.mdb", [&] { return cards().setTableFlagsD(true); });
  EXPECT_EQ(flagged(), "1");
  meanwhile("KRV.mdb", [&] { return glob->QDB().DailyPrograms().download(1); });
  EXPECT_EQ(query("select DailyProgramFlagD from DailyPrograms where Id = 1"), "False");
  meanwhile("KRV.mdb", [&] { return groups().download(1, DLFull); });
  meanwhile("I18N.MDB", [&] { return glob->insertStrings(), std::int16_t{0}; });
}

TEST_F(CardsTest, ABatchThatFailsIsTakenBackBeforeAnybodyIsTold) {
  driver.answer = [](const auto& call) -> std::int16_t {
    if (call.station == 2) throw Error(err::fileNotFound, "No driver");
    return 100;
  };
  std::string sentBeforeBox;
  watched.beforeBox = [&] {
    if (sentBeforeBox.empty()) sentBeforeBox = sentTo(1);
  };
  EXPECT_EQ(cards().createGroup(30, "30", 2, 1), -1);
  EXPECT_TRUE(sentBeforeBox.ends_with("\r\n\r\n09003000000000\r\n09003100000000\r\n\r\n"));
  EXPECT_EQ(query("select count(*) from Cardholders"), "0");
  EXPECT_GT(boxes().size(), 1U);
}

}  // namespace
}  // namespace voxa
