#include "work/access_questions.h"

#include <filesystem>

#include "comm/com.h"
#include "controllers/ledger.h"
#include "platform/datetime.h"
#include "programs/daily_program.h"
#include "support/installation_test.h"
#include "work/card_values.h"
#include "work/cards.h"
#include "work/daily_programs.h"
#include "work/download.h"
#include "work/groups.h"
#include "work/holidays.h"
#include "work/readers.h"
#include "work/refusal.h"
#include "work/weekly_programs.h"

namespace voxa {
namespace {

// Staff opens Front (controller 1; Out is its other side) in office hours, and Yard always. Mixed has two
// programs on controller 5. Everything is sent and acknowledged.
class AccessQuestionsTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    ASSERT_TRUE(library->ledger().open());
    for (const auto& [name, address, position] : {std::tuple("Front", "1", "1"),
                                                  {"Out", "1", "3"},
                                                  {"Side", "1", "2"},
                                                  {"Back", "5", "1"},
                                                  {"Yard", "5", "2"}})
      voxa::addReader(*library, {name, "Local", address, position});
    addDailyProgram(*library, {"Office", {"08:00-12:00", "13:00-24:00"}});
    addWeeklyProgram(*library, "C", {"Staff", {{"2", "2", "2", "2", "2", "0", "0"}}, "0"});
    addHoliday(*library, "Closing day", "24/12/2026", false);
    addHoliday(*library, "New Year", "01/01/2020", true);
    for (const char* group : {"Staff", "Mixed", "Nobody"}) addGroup(*library, group);
    for (const auto& [group, door, program] : {std::tuple("Staff", "Front", "Staff"),
                                               {"Staff", "Yard", "0"},
                                               {"Mixed", "Back", "Staff"},
                                               {"Mixed", "Yard", "0"}})
      (void)grantDoor(*library, group, door, program);
    for (const auto& [name, number, group] :
         {std::tuple("Ann", "1", "Staff"), {"Bob", "2", "Mixed"}, {"Cid", "3", "Nobody"}}) {
      CardTexts texts{name, number, std::string("47A") + number, group};
      addCard(*library, texts);
    }
    driver.resultFile = "1XXX1XXXXXXXXXXX";
    (void)library->Com().TestCom();
    send(true);
  }
  void send(bool full = false) {
    for (const DownloadKind kind : {DownloadKind::dailyPrograms, DownloadKind::weeklyPrograms,
                                    DownloadKind::holidays, DownloadKind::groups, DownloadKind::cards})
      (void)download(*library, kind, {{}, full});
  }
  void set(const char* columns) { db().execute(std::string("update Cardholders set ") + columns); }
  AccessAnswer ask(const char* card, const char* door, const char* at) {
    return AccessQuestions(*library).mayOpen(card, door, *parseDateTime(at));
  }
  std::string reason(const char* card, const char* door, const char* at = "21/12/2026 09:00") {
    const AccessAnswer answer = ask(card, door, at);
    return (answer.opens ? "opens: " : "shut: ") + reasonText(answer);
  }
  // What the ledger lets be said of Ann's card at Front: "yes; opens".
  std::string known(const char* at = "21/12/2026 09:00", const char* card = "Ann") {
    const AccessAnswer answer = ask(card, "Front", at);
    const char* const controller[] = {"shut", "unsaid", "opens"};
    return knownText(answer) + ": " + controller[static_cast<int>(answer.controllerOpens)];
  }
};

TEST_F(AccessQuestionsTest, TheRowsSayWhetherItOpensAndWhy) {
  const std::string office = "the hours of Staff, Office (08:00-12:00 13:00-24:00)";
  const std::string never = "the hours of Staff, Never (none)";
  const struct {
    const char *card, *door, *at;
    std::string reason;
  } cases[] = {
      {"Ann", "front", "21/12/2026 08:00", "opens: within " + office},
      {"1", "Front", "21/12/2026 11:59:59", "opens: within " + office},
      {"Ann", "Front", "21/12/2026 12:00", "shut: outside " + office},
      {"Ann", "Front", "21/12/2026 23:59:59", "opens: within " + office},
      {"Ann", "Front", "20/12/2026 09:00", "shut: outside " + never},
      {"Ann", "Front", "24/12/2026 09:00", "shut: on the holiday Closing day, outside " + never},
      {"Ann", "Front", "24/12/2027 09:00", "opens: within " + office},
      {"Ann", "Front", "01/01/2031 09:00", "shut: on the holiday New Year, outside " + never},
      {"Ann", "Out", "21/12/2026 09:00", "opens: within " + office + ", as the other side of a granted door"},
      {"Ann", "Side", "21/12/2026 09:00", "shut: its access group does not grant the door"},
      {"Ann", "Yard", "24/12/2026 03:00", "opens: always"},
      {"Bob", "Back", "21/12/2026 09:00", "opens: within " + office},
      {"Bob", "Yard", "21/12/2026 09:00",
       "shut: its access group grants the controller's doors under two weekly programs: this one stays shut"},
      {"Cid", "Back", "21/12/2026 09:00", "shut: its access group does not grant the door"}};
  for (const auto& each : cases) {
    EXPECT_EQ(reason(each.card, each.door, each.at), each.reason)
        << each.card << " " << each.door << " " << each.at;
    const AccessAnswer answer = ask(each.card, each.door, each.at);
    EXPECT_EQ(knownText(answer), "yes") << each.card << " " << each.door << " " << each.at;
    EXPECT_EQ(answer.controllerOpens, sure(answer.opens)) << each.card << " " << each.door << " " << each.at;
  }
  EXPECT_THROW(reason("Dan", "Front"), Refusal);
  EXPECT_THROW(reason("Ann", "Gate"), Refusal);
}

TEST_F(AccessQuestionsTest, ARowThatIsNotAsItHasToBeOpensNothing) {
  const struct {
    const char *change, *reason, *back;
  } cases[] = {
      {"update Cardholders set Credit = 3", "opens: within", "update Cardholders set Credit = Null"},
      {"update Cardholders set Validated = False", "shut: the card is not valid",
       "update Cardholders set Validated = True"},
      {"update Cardholders set ValidationDate = #12/20/2026#", "shut: its last valid day is past",
       "update Cardholders set ValidationDate = #12/21/2026#"},
      {"update Cardholders set Deleted = True", "shut: the card is deleted",
       "update Cardholders set Deleted = False"},
      {"update Cardholders set CardNum = 1 where CardNum = 3", "shut: another card has the same number",
       "update Cardholders set CardNum = 3 where Name = 'Cid'"},
      {"update Cardholders set CardCode = Null where CardNum = 1", "shut: the card has no code",
       "update Cardholders set CardCode = '47' where CardNum = 1"},
      {"update Cardholders set Credit = 100", "shut: Overflow", "update Cardholders set Credit = 0"},
      {"update Readers set ControllerAddress = 95 where Id = 1",
       "shut: the reader Front has the controller address 95",
       "update Readers set ControllerAddress = 1 where Id = 1"},
      {"update Readers set Position = 5 where Id = 1", "shut: the reader Front has no position",
       "update Readers set Position = 1 where Id = 1"},
      {"update AccGroupReaders set WeeklyProgNum = Null where AccessGroupId = 1 and ReaderId = 1",
       "shut: the access group Staff opens Front by no weekly program",
       "update AccGroupReaders set WeeklyProgNum = 1 where AccessGroupId = 1 and ReaderId = 1"},
      {"update DailyPrograms set StartFirstInterval = '' where Id = 2", "shut: daily program 2 is missing",
       "update DailyPrograms set StartFirstInterval = '08:00' where Id = 2"}};
  for (const auto& each : cases) {
    db().execute(each.change);
    EXPECT_EQ(reason("Ann", "Front").substr(0, std::string(each.reason).size()), each.reason) << each.change;
    db().execute(each.back);
    EXPECT_TRUE(reason("Ann", "Front").starts_with("opens: within")) << each.back;
  }
}

TEST_F(AccessQuestionsTest, TheLedgerSaysWhatTheControllerKnowsAndDoes) {
  const auto refused = [this](const auto& change, const auto& expected) {
    change();
    EXPECT_EQ(known(), expected);
    answerAll(2);
    send();
    answerAll(100);
  };
  // Each change before it is sent, when nobody knows whether it arrived, and when it has.
  refused([&] { changeCard(*library, "Ann", {.valid = "no"}); },
          "not yet (its right to the door); it opens the door: opens");
  EXPECT_EQ(known(), "in doubt (its right to the door): unsaid");
  send();
  EXPECT_EQ(known(), "yes: shut");
  changeCard(*library, "Ann", {.credit = "5", .valid = "yes"});
  send();
  EXPECT_EQ(known(), "yes: unsaid") << "it counts the credit";
  changeCard(*library, "Ann", {.until = "20/12/2026", .credit = "none"});
  EXPECT_EQ(known("20/12/2026 09:00"), "not yet (its last valid day, its credit): shut");
  send();
  EXPECT_EQ(known(), "yes: shut");
  changeCard(*library, "Ann", {.until = "none"});
  send();
  EXPECT_EQ(known(), "yes: opens");

  refused(
      [&] {
        changeDailyProgram(*library, "Office", {{}, {"08:30-12:30"}});
      },
      "not yet (daily program Office): opens");
  EXPECT_EQ(known(), "in doubt (daily program Office): opens") << "by either of the two";
  EXPECT_EQ(known("21/12/2026 12:15"), "in doubt (daily program Office): unsaid");
  send();
  refused([&] { addHoliday(*library, "Longest night", "21/12/2026", false); },
          "not yet (the holidays); it opens the door: opens");
  EXPECT_EQ(known(), "in doubt (the holidays): unsaid");
  EXPECT_EQ(known("22/12/2026 09:00"), "yes: opens") << "that day does not depend on it";
  send();
  EXPECT_EQ(known(), "yes: shut");
  db().execute("delete from Holidays where Name = 'Longest night'");
  EXPECT_EQ(known(), "not yet (the holidays); it keeps the door shut: shut");

  // One that no line can hold is a holiday all the same.
  db().execute("insert into Holidays (Id, Name, [Date], EachYear) values (21, 'Late', #12/22/2026#, False)");
  EXPECT_EQ(known("22/12/2026 09:00"), "not yet (the holidays); it opens the door: opens");
  db().execute("delete from Holidays where Id = 21");

  // With four intervals a day; a weekly program defines the whole day with two of them.
  library->Com().pDailyPrograms4Zones = 1;
  library->DailyPrograms().provideFourZones();
  changeDailyProgram(*library, "Office", {{}, {"08:30-12:30", "13:00-24:00", "12:40-12:50"}});
  changeWeeklyProgram(*library, "C", "Staff", {{}, {"1", "2", "2", "2", "2", "2", "2"}});
  EXPECT_EQ(known("22/12/2026 12:40"),
            "not yet (weekly program Staff, daily program Office); it keeps the door shut: shut");
  send();
  EXPECT_EQ(known("22/12/2026 12:40") + known("28/12/2026 03:00"), "yes: opensyes: opens");

  set("Deleted = True where CardNum = 1");
  EXPECT_EQ(known("22/12/2026 09:00"), "not yet (that it opens nothing); it opens the door: opens");
  set("Deleted = False where CardNum = 1");
  library->ledger().replace({1, 1}, false);
  EXPECT_EQ(known("22/12/2026 09:00"), "not yet (the card); it keeps the door shut: shut");
  send(true);
  EXPECT_EQ(known("22/12/2026 09:00"), "yes: opens");
  set("CardCode = '12' where CardNum = 1");
  EXPECT_EQ(known("22/12/2026 09:00"),
            "not yet (the card); it still opens to its old card (code 000047A1): shut");
  set("CardCode = '000047A1' where CardNum = 1");
  db().execute("update Readers set ControllerType = 'VRMD1' where ControllerAddress = 1");
  EXPECT_EQ(known("22/12/2026 09:00"), "in doubt (the card): unsaid");
  // A ledger that begins with the rows assumes, and is certain of nothing.
  for (const char* part : {"Ledger.MDB", "Ledger.MDB-wal", "Ledger.MDB-shm"}) std::filesystem::remove(part);
  EXPECT_EQ(known("22/12/2026 09:00"), "in doubt (the card): unsaid");
  EXPECT_EQ(boxes(), std::vector<std::string>{});
}

TEST_F(AccessQuestionsTest, WhoAndWhatAreListed) {
  const auto listed = [](const std::vector<AccessAnswer>& answers) {
    std::string all;
    for (const AccessAnswer& each : answers)
      all += each.name + " " + each.door +
             (each.opens                                 ? " opens; "
              : each.reason == AccessReason::twoPrograms ? " two; "
                                                         : " shut; ");
    return all;
  };
  const auto who = [&](const char* door) {
    return listed(AccessQuestions(*library).whoOpens(door, *parseDateTime("20/12/2026 09:00")));
  };
  EXPECT_EQ(who("Front") + who("Out") + who("Side"), "Ann Front shut; Ann Out shut; ");
  EXPECT_EQ(who("Yard"), "Ann Yard opens; ");
  const auto what = [&](const char* card) {
    return listed(AccessQuestions(*library).whatOpens(card, *parseDateTime("21/12/2026 09:00")));
  };
  EXPECT_EQ(what("1") + what("Bob") + what("Cid"),
            "Ann Front opens; Ann Out opens; Ann Yard opens; Bob Back opens; Bob Yard two; ");
  // One that is deleted, and of which the controller has not been told, is among those who get in.
  set("Deleted = True where CardNum = 1");
  EXPECT_EQ(who("Yard"), "Ann Yard shut; ");
  db().execute(
      "update WeeklyPrograms set DailyProgDay1 = 0, DailyProgDay2 = 0, DailyProgDay3 = 0, DailyProgDay4 = 0, "
      "DailyProgDay5 = 0 where ProgNum = 1 and ProgType = 'C'");
  set("Deleted = False");
  EXPECT_EQ(who("Front"), "") << "at no hours at all";
}

}  // namespace
}  // namespace voxa
