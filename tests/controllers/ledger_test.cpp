// What the ledger says that controllers hold, by what the driver was told and what it answered.

#include "controllers/ledger.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "access/cardholder.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "comm/inter.h"
#include "files/command_file.h"
#include "platform/files.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

class LedgerTest : public test::InstallationTest {
 protected:
  // Controllers 1/1 and 1/2 for the driver's station-wide calls, 1/3 beside them, a VRMD1.
  void SetUp() override {
    createInstallation();
    addReader(1, "Front", 1, 1, 1);
    addReader(2, "Back", 1, 2, 1);
    addReader(3, "Gate", 1, 3, 1);
    db().execute("update Readers set ControllerType = 'VRMD1' where Id = 3");
    write("S001.ini", "NAM:Local\r\nCFL:COMMAND.TXT\r\nTER:1,2\r\n");
  }
  std::int16_t send(std::int16_t address, std::int16_t result, const std::vector<std::string>& lines,
                    std::int16_t station = 1) {
    answerAll(result);
    return sendAs(*library, address, lines, station);
  }
  static std::int16_t sendAs(Library& sender, std::int16_t address, const std::vector<std::string>& lines,
                             std::int16_t station = 1) {
    sender.CommandFile().write(lines);
    return Inter(sender).sendCommand(station, address);
  }
  /// A card's code, weekly program and first door on a controller, as the ledger stores them.
  static std::string card(Library& asked, std::int16_t address, std::int32_t number) {
    const Holdings holdings = asked.ledger().holdings({1, address});
    const auto found = holdings.cards.find(number);
    if (found == holdings.cards.end()) return "none";
    const CardState& card = found->second;
    return card.part(CardField::code).text() + "," + card.part(CardField::weekly).text() + "," +
           card.part(CardField::door1).text();
  }
  std::string card(std::int16_t address, std::int32_t number = 7) { return card(*library, address, number); }
  std::string daily(std::int16_t address, std::int32_t number) {
    const Holdings holdings = library->ledger().holdings({1, address});
    const auto found = holdings.things.find({ThingKind::daily, number});
    return found == holdings.things.end() ? "none" : found->second.text();
  }
  std::unique_ptr<Library> another() {
    auto other = std::make_unique<Library>(Library::Seams{*engine, watched, watched, clock});
    static_cast<Paths&>(other->Com()) = glob->Com();
    return other;
  }
};

TEST_F(LedgerTest, TheAddressAndTheAnswerDecideWhatIsHeld) {
  const struct {
    std::int16_t address, result;
    const char* line;
    const char *one, *two, *gate;  // card 7 on 1/1, 1/2, 1/3
  } steps[] = {
      {41, 100, "33000701", "~,~|01,~", "none", "none"},  // without its code nobody holds a part
      {41, 100, "0900070000123:", "0000123:,~|01,~", "none", "none"},
      {41, 2, "33000702", "0000123:,~|01|02,~", "none", "none"},
      {41, 0, "33000703", "0000123:,~|01|02|03,~", "none", "none"},
      {41, 100, "33000704", "0000123:,04,~", "none", "none"},
      {95, 100, "33000705", "0000123:,04|05,~", "~,~|05,~", "~,~|05,~"},
      {0, 100, "090007       1", "00000001,04|05,~", "00000001,~|05,~", "~,~|05,~"},
      {0, 3, "33000706", "00000001,04|05|06,~", "00000001,~|05|06,~", "~,~|05,~"},
      {0, 100, "33000707", "00000001,07,~", "00000001,07,~", "~,~|05,~"},
      {5, 100, "33000708", "00000001,07|08,~", "00000001,07|08,~", "~,~|05|08,~"},  // nobody's address
      {43, 100, "09;01;0007;       2", "00000001,07|08,~", "00000001,07|08,~", "00000002,~|05|08,~"},
      {43, 100, "33000709", "00000001,07|08,~", "00000001,07|08,~", "00000002,~|05|08|09,~"},  // not its form
      {43, 100, "16;01;0007;1", "00000001,07|08,~", "00000001,07|08,~", "00000002,~|05|08|09,1"},
      {42, 100, "1600072", "00000001,07|08,~", "00000001,07|08,~|2",
       "00000002,~|05|08|09,1"},  // no such value
      {42, 4, "09000700000000", "00000001,07|08,~", "00000001|,07|08|,~|2", "00000002,~|05|08|09,1"},
      {42, 100, "09000700000000", "00000001,07|08,~", ",,", "00000002,~|05|08|09,1"},
      {42, 100, "0900070000,103", "00000001,07|08,~", "^,^,^", "00000002,~|05|08|09,1"},  // no code
      {41, 100, "330007", "^,^,^", "^,^,^", "00000002,~|05|08|09,1"}};  // which card it is, nobody can say
  for (const auto& step : steps) {
    ASSERT_EQ(send(step.address, step.result, {step.line}), step.result);
    EXPECT_EQ(card(1) + " " + card(2) + " " + card(3),
              std::string(step.one) + " " + step.two + " " + step.gate)
        << step.address << ": " << step.line;
  }
  EXPECT_EQ(card(1, 8) + " " + card(2, 8), "none none");
  EXPECT_EQ(library->ledger().holdings({1, 1}).card(8).text().substr(0, 3), "^,^");
  // Of several lines that fail each may have arrived. A speed decides about no door; what nobody knows is
  // kept.
  send(41, 100,
       {"31020800120013001700",
        "\x7f"
        "1",
        "99 hello"});
  send(41, 5, {"31020900120013001700", "34012412", "3401241226"});
  EXPECT_EQ(daily(1, 2), "0800120013001700|0900120013001700");
  EXPECT_EQ(library->ledger().holdings({1, 1}).notUnderstood, std::vector<std::string>{"99 hello"});
  send(41, 100, {"32010202020202000001"});
  EXPECT_EQ(library->ledger().holdings({1, 1}).thing(ThingKind::weeklyC, 1).text(), "0202020202000001");
  glob->Com().inhibitCom = true;
  glob->Com().sendLines({"31020000240024002400"}, ControllerPlace{1, 1});
  EXPECT_EQ(daily(1, 2), "0800120013001700|0900120013001700");
}

TEST_F(LedgerTest, WhatIsBeingSentIsInDoubtForEverybodyAndStaysSoAfterAKill) {
  send(41, 100, {"090007       1"});
  const auto other = another();
  driver.answer = [&](const auto&) {
    EXPECT_EQ(card(*other, 1, 7), "00000001|00000002,~,~");
    return std::int16_t{100};
  };
  sendAs(*library, 41, {"090007       2"});
  EXPECT_EQ(card(*other, 1, 7), "00000002,~,~");
  // Somebody else sends while a block is under way: whose came last, nobody knows.
  driver.answer = [](const auto&) { return std::int16_t{100}; };
  {
    const ExpectedSends expected(library->ledger(),
                                 {{{1, 1}, {"090007       3"}}, {{1, 2}, {"090007       3"}}});
    sendAs(*library, 41, {"090007       3"});
    sendAs(*other, 41, {"090007       4"});
    sendAs(*library, 42, {"090007       3"});
  }
  EXPECT_EQ(card(1), "00000002|00000004|00000003,~,~");
  EXPECT_EQ(card(2), "~|00000004|00000003,~,~");  // there is one command file for both
  // A caller's own transaction takes back nothing that a controller has.
  engine->begin();
  sendAs(*library, 41, {"090007       5"});
  engine->rollback();
  EXPECT_EQ(card(1), "00000005,~,~");
  // A process that ends in the middle leaves doubt.
  driver.answer = [](const auto&) -> std::int16_t { throw Error(err::internalError, "killed"); };
  EXPECT_THROW(sendAs(*library, 41, {"090007       6"}), Error);
  EXPECT_EQ(card(1), "00000005|00000006,~,~");
  driver.answer = [](const auto&) -> std::int16_t { throw Error(err::fileNotFound, "no driver"); };
  EXPECT_THROW(sendAs(*library, 41, {"090007       7"}), Error);
  EXPECT_EQ(card(1), "00000005|00000006,~,~");
}

TEST_F(LedgerTest, WhatIsBeingSentWhileTheLedgerIsReplacedIsInDoubtInTheNewOne) {
  for (const bool announced : {false, true}) {
    send(41, 100, {"090007       1"});
    driver.answer = [](const auto&) {
      for (const char* part : {"Ledger.MDB", "Ledger.MDB-wal", "Ledger.MDB-shm"})
        std::filesystem::remove(part);
      return std::int16_t{100};
    };
    {
      const std::vector<PlannedSend> sends = {{{1, 1}, {"090007       2"}}};
      const ExpectedSends expected(library->ledger(), announced ? sends : std::vector<PlannedSend>{});
      sendAs(*library, 41, {"090007       2"});
    }
    EXPECT_EQ(card(1), "~|00000002,~,~") << announced;
    EXPECT_EQ(boxes(), std::vector<std::string>{});
  }
}

TEST_F(LedgerTest, AnotherStationOfTheSameNumberHasOtherControllers) {
  send(41, 100, {"090007       1"});
  db().execute("update Stations set Name = 'Renamed'");
  EXPECT_EQ(card(1), "00000001,~,~");
  db().execute("update Stations set Name = 'Other', ComPort = 3");
  EXPECT_EQ(card(1), "^,^,^");  // it may be the same one, and have to erase the card
  send(41, 100, {"090007       2"});
  EXPECT_EQ(card(1), "00000002,^,^");
  db().execute("update Readers set ControllerType = 'VRMD1' where Id = 1");
  EXPECT_EQ(card(1), "^,^,^");  // what was sent to it was in the other form
  library->ledger().replace({1, 1}, false);
  EXPECT_EQ(card(1), "none");
  send(41, 100, {"09;01;0007;       2"});
  db().execute("delete from Readers");
  db().execute("delete from Stations where Id = 1");
  EXPECT_EQ(card(1), "none");
  addStation(1, "Local");
  addReader(1, "Front", 1, 1, 1);
  EXPECT_EQ(card(1), "^,^,^");  // the station of the same number, with what was there
}

TEST_F(LedgerTest, ANewLedgerBeginsWithTheRows) {
  db().execute("insert into AccessGroups (Id, Name) values (1, 'Staff')");
  db().execute("insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgNum) values (1, 1, 0)");
  for (const char* holder : {"(7, 'A', '1', 1, False)", "(8, 'B', '2', 1, True)"}) {
    db().execute(
        "insert into Cardholders (CardNum, Name, CardCode, AccessGroupId, AccessGroupIdFlagD) values " +
        std::string(holder));
  }
  db().execute("update DailyPrograms set DailyProgramFlagD = False");
  EXPECT_EQ(card(1) + " " + card(1, 8) + " " + card(2), "~00000001,~00,~1 ^,^,^ none");
  EXPECT_EQ(daily(2, 1), "~0000240024002400");
  // One of a newer version is not touched, and what it does not know of is not sent.
  restart();
  plain("Ledger.MDB", "pragma user_version=3");
  static_cast<Paths&>(glob->Com()) = {folder + "\\KRV.mdb", "", "", folder};
  EXPECT_THROW(send(41, 100, {"330007 5"}), Error);
  EXPECT_TRUE(driver.calls.empty());
  plain("Ledger.MDB", "pragma user_version=2");
  // A damaged one is put aside, which is said, and nothing of it is believed any more.
  send(41, 100, {"090007       9"});
  restart();
  static_cast<Paths&>(glob->Com()) = {folder + "\\KRV.mdb", "", "", folder};
  glob->QDB().openCommonDB();
  write("Ledger.MDB", "rubbish");
  EXPECT_EQ(send(41, 100, {"33000705"}), 100);
  EXPECT_EQ(card(1), "^,^|05,^");
  EXPECT_EQ(textOf("Ledger.MDB.damaged1"), "rubbish");
  EXPECT_EQ(boxes().size(), 1U);
}

}  // namespace
}  // namespace voxa
