#include "work/cards.h"
#include "comm/com.h"
#include "messages/strings.h"
#include "platform/transliteration.h"
#include "support/installation_test.h"
#include "work/access_questions.h"
#include "work/card_batch.h"
#include "work/card_blocking.h"
#include "work/card_erasing.h"
#include "work/card_export.h"
#include "work/card_history.h"
#include "work/card_import.h"
#include "work/carry_out.h"
#include "work/deleted_cards.h"
#include "work/groups.h"
#include "work/lifts.h"
#include "work/line_test.h"
#include "work/links.h"
#include "work/readers.h"
#include "work/refusal.h"
#include "work/report.h"

namespace voxa {
namespace {

// Staff opens Front on controller 1 and Back on controller 5, and uses a lift output on 1; Guests open Back.
class CardWorkTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    addReader(1, "Front", 1, 1, 1);
    addReader(2, "Back", 1, 5, 1);
    addGroup(*library, "Staff");
    addGroup(*library, "Guests");
    for (const auto& [group, door] : {std::pair("Staff", "Front"), {"Staff", "Back"}, {"Guests", "Back"}}) {
      grantDoor(*library, group, door, "0");
    }
    addLift(*library, {"Top", "Local", "1", "3"});
    grantLift(*library, "Staff", "Top");
    addCard(*library, {"Ann", "12", "4711", "Staff", "42"});
    forgetMarks();
    testLine(bothAnswer);
  }
  void TearDown() override { EXPECT_TRUE(boxes().empty()) << "work shows nothing"; }

  void forgetMarks() { db().execute("update Cardholders set CardCodeFlagD = False, PINCodeFlagD = False"); }
  std::string marked() { return query("select PINCodeFlagD from Cardholders where Name = 'Ann'"); }
  void testLine(const char* answers) {
    driver.resultFile = answers;
    (void)library->Com().TestCom();
    driver.calls.clear();
  }
  void refuseCommands(bool refuse) {
    driver.answer = [refuse](const auto& call) { return refuse && call.command == CmSendCommand ? 4 : 100; };
  }

  static constexpr const char* bothAnswer = "1XXX1XXXXXXXXXXX";
  static constexpr const char* frontSilent = "2XXX1XXXXXXXXXXX";
};

TEST_F(CardWorkTest, WhatACardLosesErasesItBeforeTheRowsChange) {
  const auto rows = [this] {
    std::string all;
    for (const char* field :
         {"CardNum from Cardholders", "CardCode from Cardholders", "AccessGroupId from Cardholders",
          "count(*) from AccGroupReaders", "count(*) from LiftGroup", "count(*) from AccessGroups"}) {
      all += query(std::string("select ") + field) + " ";
    }
    return all;
  };
  const auto change = [this](const char* card, CardTexts texts) {
    return [this, card, texts] { changeCard(*library, card, texts); };
  };
  const std::pair<const char*, std::function<void()>> works[] = {
      {"090012", change("Ann", {.code = "4712"})},
      {"090012", change("12", {.number = "13"})},
      {"090013", [this] { revokeLift(*library, "Staff", "top"); }},
      {"090013", change("13", {.group = "Guests"})},
      {"", change("Ann", {.group = "Staff"})},
      {"090013", [this] { revokeDoors(*library, "staff", {"Front"}); }},
      {"", [this] { grantDoor(*library, "Staff", "Front", "0"); }},
      {"090013", [this] { deleteGroup(*library, "Staff", "Guests"); }}};
  for (const auto& [line, work] : works) {
    SCOPED_TRACE(rows());
    forgetMarks();
    driver.calls.clear();
    if (*line != '\0') {
      const std::string before = rows();
      driver.resultFile = frontSilent;
      EXPECT_THROW(work(), Refusal);
      EXPECT_EQ(driver.sent() + marked(), "False") << "nothing is sent when one does not answer";
      driver.resultFile = bothAnswer;
      refuseCommands(true);
      EXPECT_THROW(work(), Refusal);
      EXPECT_EQ(marked(), "True") << "one may have erased it";
      EXPECT_EQ(rows(), before);
      refuseCommands(false);
      driver.calls.clear();
      forgetMarks();
    }
    work();
    EXPECT_EQ(driver.sent().substr(0, 6), line);
    EXPECT_EQ(marked(), "True");
  }
  EXPECT_EQ(rows(), "13 00004712 2 1 0 2 ");
  EXPECT_THROW(deleteGroup(*library, "Guests"), Refusal) << "it has a card";
}

TEST_F(CardWorkTest, WhatTheControllersWereNotToldIsReturned) {
  const CardBatch batch(*library, {"40", "500", "2", "Staff"});
  refuseCommands(true);
  CreatedBatch created = createCards(*library, batch, true);
  EXPECT_FALSE(created.created);
  ASSERT_EQ(created.notices.size(), 1U);
  EXPECT_EQ(created.notices[0].message.mnemonic, "msgCantDownload");
  EXPECT_THROW((void)invalidateCard(*library, 12, {}), Refusal);
  ErasedCard card = deleteCard(*library, 12);
  EXPECT_FALSE(card.erased);
  ASSERT_EQ(card.notices.size(), 1U);
  EXPECT_EQ(marked() + query("select Deleted from Cardholders"), "TrueFalse");

  refuseCommands(false);
  testLine(frontSilent);
  glob->Strings().insert("nameGroupCard", "Carte d'accès", 2000, "Table Cardholders", "Name");
  created = createCards(*library, batch, false);
  EXPECT_TRUE(created.created && created.notices.empty());
  const std::vector<std::string> front = {"Local Controller 1  -  Front"};
  EXPECT_EQ(created.silent, front);
  EXPECT_EQ(query("select Name from Cardholders where CardCodeFlagD = True and CardNum = 41"),
            "Carte d'accès 0041");
  created = createCards(*library, batch, true);
  ASSERT_EQ(created.notices.size(), 1U);
  EXPECT_EQ(created.notices[0].message.mnemonic, "msgCardNumInUse");
  EXPECT_EQ(invalidateCard(*library, 12, {}).holders, front);
  card = deleteCard(*library, 12);
  EXPECT_EQ(card.holders, front);
  EXPECT_EQ(query("select CardCodeFlagD from Cardholders where Deleted = True"), "True")
      << "to be erased yet";
  changeCard(*library, "40", {.name = "500"});
  EXPECT_THROW((void)deleteCard(*library, 500), Refusal) << "a name, and the number of no card";
}

TEST_F(CardWorkTest, ANewReaderStaysMarkedUntilItHasTheCardsOfTheDefaultGroup) {
  addCard(*library, {"Zoe", {}, "5", "0"});
  testLine(frontSilent);
  const AddedReader side = voxa::addReader(*library, {"Side", "Local", "1", "2"});
  EXPECT_TRUE(side.cardsToSend);
  EXPECT_TRUE(driver.calls.empty()) << "whether to send is asked before";
  const auto links = "select count(*) from AccGroupReaders where AccessGroupId = 0 and FlagD = True";
  for (const auto& [answers, marked] : {std::pair(frontSilent, "1"), {bothAnswer, "0"}}) {
    testLine(answers);
    EXPECT_TRUE(sendDefaultGroup(*library, side.id).empty());
    EXPECT_EQ(query(links), marked);
  }
  db().execute("update Stations set Active = False");
  EXPECT_FALSE(voxa::addReader(*library, {"Rear", "Local", "1", "4"}).cardsToSend);
  EXPECT_EQ(query(links), "1");
}

TEST_F(CardWorkTest, ATableIsImportedWhollyOrNotAtAll) {
  struct : Observer {
    void progress(const char* /*what*/, std::size_t done, std::size_t total) override {
      last = std::to_string(done) + "/" + std::to_string(total);
    }
    std::string last;
  } observer;
  const auto import = [&](const std::string& lines, bool update = false) {
    CardImport read =
        readCardTable(*library, "\xEF\xBB\xBFname, code ,group,number\r\n" + lines, {.update = update});
    if (read.badLines.empty()) read.changes.carryOut(&observer);
    return read;
  };
  const CardImport bad =
      import("Ben,1,Staff,\nAnn,2,Staff,\n\nCas,1,Staff,\nDan,3,Nobody,\nEve,4,Staff,12\n,5,0,\nF\n");
  std::string lines;
  for (const auto& line : bad.badLines) lines += std::to_string(line.line) + " ";
  EXPECT_EQ(lines, "3 5 6 7 8 9 ");
  EXPECT_EQ(bad.badLines[1].reason, "Card code already in use (00000001: line 2)");
  EXPECT_EQ(query("select count(*) from Cardholders") + observer.last, "1");

  EXPECT_EQ(import("Ben,1,Staff,\nCas,2,guests,1\n").changes.added(), 2U);
  EXPECT_EQ(observer.last, "2/2");
  EXPECT_EQ(query("select CardNum from Cardholders where Name = 'Ben' and ValidatedFlagD = True"), "2");

  forgetMarks();
  db().execute("update Cardholders set CardCode = 'b', Credit = 150 where Name = 'Cas'");  // not by a command
  CardImport same = readCardTable(*library, exportCards(*library, true).text, {.update = true});
  EXPECT_TRUE(same.changes.empty() && same.badLines.empty()) << "an export changes nothing";
  EXPECT_EQ(same.unchanged, 3U);
  const std::string swapped = "number;name;until\r\n1;Ben;31/12/2027\r\n2;Cas;\r\n";
  const CardImport bad2 = readCardTable(*library, "name;number\nBen;12\n", {.update = true});
  ASSERT_EQ(bad2.badLines.size(), 1U) << "card 2 has the name, and is not in the table";
  CardImport update = readCardTable(*library, swapped, {.update = true});
  ASSERT_TRUE(update.badLines.empty());
  std::string told;
  for (const CardDifference& one : update.changes.differences()) told += one.column + ":" + one.after + " ";
  EXPECT_EQ(told, "name:Ben until:31/12/2027 name:Cas ");
  driver.calls.clear();
  update.changes.carryOut();
  EXPECT_EQ(query("select Name from Cardholders where CardNum = 1") + driver.sent(), "Ben")
      << "nothing is erased";
  const CardOwners owners(*library);
  EXPECT_EQ(owners.idsNamed("ben").size(), 2U);
}

TEST_F(CardWorkTest, ALostCardOpensNothingWhereverItCanBeReached) {
  (void)carryOut(*library, {});
  const auto holds = [&](std::int16_t address) {
    return !library->ledger().holdings({1, address}).card(12).part(CardField::code).is("");
  };
  ASSERT_TRUE(holds(1) && holds(5));
  testLine(frontSilent);
  ToldCard card = blockCard(*library, "Ann", {});
  EXPECT_EQ(card.left, std::vector<std::string>{"Local Controller 1  -  Front: does not answer"});
  EXPECT_TRUE(holds(1) && !holds(5));
  EXPECT_EQ(query("select Validated from Cardholders where CardNum = 12"), "False");
  EXPECT_THROW((void)replaceCard(*library, "12", {.number = "13", .code = "4712"}, {}), Refusal);
  EXPECT_EQ(query("select CardCode from Cardholders where CardNum = 12"), "00004711");
  card = replaceCard(*library, "12", {.code = "4712"}, {});
  EXPECT_EQ(card.left.size(), 1U);
  EXPECT_EQ(library->ledger().holdings({1, 5}).card(12).part(CardField::code).last(), "00004712");
  testLine(bothAnswer);
  EXPECT_TRUE(carryOut(*library, {}).isComplete());
  EXPECT_EQ(library->ledger().holdings({1, 1}).card(12).part(CardField::code).last(), "00004712");
  EXPECT_TRUE(blockCard(*library, "Ann", {}).left.empty());
  EXPECT_TRUE(!holds(1) && !holds(5));
  driver.calls.clear();
  EXPECT_TRUE(carryOut(*library, {}).isComplete());
  EXPECT_EQ(driver.sent(), "") << "a blocked card does not come back";
  EXPECT_TRUE(unblockCard(*library, "Ann", {}).left.empty());
  EXPECT_TRUE(holds(1) && holds(5));
}

// A controller that was not reached opens to the old code, as the card of the old number.
TEST_F(CardWorkTest, WhatAControllerMayStillOpenToIsNobodyElses) {
  addCard(*library, {"Bob", "13", "99", "Staff"});
  (void)carryOut(*library, {});
  testLine(frontSilent);
  EXPECT_EQ(replaceCard(*library, "Ann", {.code = "4712"}, {}).left.size(), 1U);
  AccessQuestions questions(*library);
  EXPECT_NE(knownText(questions.mayOpen("12", "Front", clock.now())).find("old card (code 00004711)"),
            std::string::npos);
  passOver(*library, silentControllers(*library, {}));
  ASSERT_TRUE(deleteCard(*library, 13).erased);
  const std::function<void()> works[] = {
      [&] {
        addCard(*library, {"Eve", {}, "4711", "Guests"});
      },
      [&] {
        (void)createCards(*library, CardBatch(*library, {"40", "4710", "2", "Guests"}), false);
      },
      [&] { restoreCard(*library, "Bob", {"14"}); }, [&] { (void)requirePurgeable(*library, "Bob"); }};
  for (const auto& work : works) EXPECT_THROW(work(), Refusal);
  // As an older version of this system left it.
  db().execute("update Cardholders set CardNum = 14 where Name = 'Bob'");
  EXPECT_THROW((void)requirePurgeable(*library, "Bob"), Refusal);
  EXPECT_THROW(addCard(*library, {"Eve", "13", "5", "Guests"}), Refusal);
  testLine(bothAnswer);
  EXPECT_TRUE(carryOut(*library, {}).isComplete());
  for (const auto& work : {works[0], works[1], works[3], works[2]}) EXPECT_NO_THROW(work());
}

TEST_F(CardWorkTest, ADeletedCardComesBackOrGoesForGood) {
  (void)carryOut(*library, {});
  const std::int32_t ann = db().openRecordset("select Id from Cardholders")->get("Id").toInt32();
  EXPECT_THROW((void)requirePurgeable(*library, "Ann"), Refusal) << "it is not deleted";
  testLine(frontSilent);
  passOver(*library, silentControllers(*library, {}));
  ASSERT_TRUE(deleteCard(*library, 12).erased);
  EXPECT_THROW((void)requirePurgeable(*library, "Ann"), Refusal) << "one controller has it";
  testLine(bothAnswer);
  EXPECT_EQ(restoreCard(*library, "12", {}), 12);
  (void)carryOut(*library, {});
  ASSERT_TRUE(deleteCard(*library, 12).erased);
  clock.wait(60);
  addCard(*library, {"Bob", "12", "99", "Staff"});
  EXPECT_THROW((void)restoreCard(*library, "Ann", {}), Refusal) << "Bob has the number";
  db().execute("update Cardholders set AccessGroupId = 0 where Deleted = True");
  EXPECT_THROW((void)restoreCard(*library, "Ann", {"14"}), Refusal) << "the group may be gone";
  const Purge purge = requirePurgeable(*library, "Ann");
  purgeCard(*library, purge);
  EXPECT_EQ(addCard(*library, {"Ann", {}, "4711", "Guests"}), 1);
  const CardOwners owners(*library);
  const DateTime now = clock.now();
  EXPECT_EQ(owners.ownerAt(12, DateTime{now.days - 1}), ann);
  EXPECT_NE(owners.ownerAt(12, DateTime{now.days + 1}), ann);
  EXPECT_EQ(owners.idsNamed("ANN").size(), 2U);
}

TEST_F(CardWorkTest, ManyCardsChangeTogetherAndAreErasedTogether) {
  addCard(*library, {"Ben", "20", "20", "Staff", {}, "24/12/2026"});
  addCard(*library, {"Cas", "21", "21", "Guests", {}, "23/12/2026"});
  const auto count = [&](const std::vector<std::string>& conditions) {
    return listCards(*library, cardFilterOf(conditions)).size();
  };
  EXPECT_EQ(count({"door=front"}), 2U);
  EXPECT_EQ(count({"expired"}), 1U);
  EXPECT_EQ(count({"expires-before=2027-01-01"}), 1U) << "one that is over does not expire";
  EXPECT_EQ(count({"never-used", "name=AN"}), 1U);
  EXPECT_THROW((void)cardFilterOf({"colour=red"}), Refusal);
  driver.calls.clear();
  CardChanges changes = changesOf(*library, {.group = "Staff"}, {.group = "Guests"});
  EXPECT_EQ(changes.changed(), 2U);
  changes.carryOut();
  EXPECT_EQ(driver.count(CmSendCommand), 1U) << "Front forgets both at once";
  EXPECT_EQ(count({"group=Guests"}), 3U);
}

TEST_F(CardWorkTest, NamesOfAnyScriptAreRefusedOrWrittenInLatinLetters) {
  try {
    addCard(*library, {"Łódź", {}, "77", "Staff"});
    FAIL();
  } catch (const Refusal& refusal) {
    EXPECT_NE(std::string(refusal.what()).find("'Ł' (U+0141), 'ź' (U+017A) cannot be stored"),
              std::string::npos)
        << refusal.what();
  }
  if (!inLatinLetters("Ł")) GTEST_SKIP() << "this computer has no ICU";
  const std::int16_t number =
      addCard(*library,
              {.name = "Łódź Иван é", .code = "77", .group = "Staff", .remark = "Б", .transliterate = true});
  EXPECT_EQ(query("select Name from Cardholders where CardNum = " + std::to_string(number)),
            "Lódz Ivan é (B)");
}

}  // namespace
}  // namespace voxa
