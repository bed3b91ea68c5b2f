#include "work/journal_list.h"

#include "journal/journal.h"
#include "support/installation_test.h"
#include "work/daily_programs.h"
#include "work/holidays.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/weekly_programs.h"

namespace voxa {
namespace {

class ListsTest : public test::InstallationTest {
 protected:
  void SetUp() override { createInstallation(); }
};

TEST_F(ListsTest, TheJournalIsFilteredByMinuteCardReaderAndType) {
  Database& journal = *glob->QDB().Journal().DB();
  for (const char* row : {"#12/24/2026 18:05#, 1, 'Local', 1, 'Front', '00', 'Ada', '00001200'",
                          "#12/24/2026 18:06#, 1, 'Local', 1, 'Front', '10', Null, '0000001:'",
                          "#12/24/2026 00:00#, 1, 'Local', 2, 'Gone', '24', 'Ben', '00012000'",
                          "#12/25/2026 00:00#, 1, 'Local', Null, Null, '99', Null, '00001200'"}) {
    journal.execute(
        "insert into Journal ([Date], StationId, StationName, ReaderId, ReaderName, TransactionType, "
        "CardholderName, TransactionData) values (" +
        std::string(row) + ")");
  }
  const std::pair<JournalFilter, const char*> cases[] = {
      {{}, "24 00 10 99 "},
      {{.since = "24/12/2026 18:05", .until = "24/12/2026 18:05"}, "00 "},
      {{.since = "2026-12-24", .until = "2026-12-24"}, "24 00 10 "},
      {{.since = "25/12/2026"}, "99 "},
      {{.card = "0012"}, "00 "},
      {{.card = "1a"}, "10 "},
      {{.card = "ben"}, "24 "},
      {{.reader = "front", .type = "refused"}, ""},
      {{.type = "refused"}, "24 "},
      {{.type = "10"}, "10 "},
      {{.reader = "gone"}, "24 "}};
  addReader(1, "Front", 1, 1, 1);
  for (const auto& [filter, types] : cases) {
    std::string found;
    JournalList(*library, filter).each([&](const JournalRow& row) { found += row.type + " "; });
    EXPECT_EQ(found, types) << filter.since << filter.card << filter.reader << filter.type;
  }
  EXPECT_THROW(JournalList(*library, {.type = "grant"}), Refusal);
  EXPECT_THROW((void)JournalList(*library, {.reader = "Frnt"}).each([](const auto&) {}), Refusal);
  journal.close();
  EXPECT_THROW(JournalList(*library, {}), Refusal);
}

TEST_F(ListsTest, RowsAreFoundByNumberOrNameAndByNothingElse) {
  addDailyProgram(*library, {"9", {"08:00-12:00"}});  // 2
  addDailyProgram(*library, {"Été", {"none"}});       // 3
  addDailyProgram(*library, {"2", {"none"}});         // 4
  for (const auto& [called, id] :
       {std::pair("9", 2), std::pair("ÉTÉ", 3), std::pair("été", 3), std::pair("2", 2)}) {
    EXPECT_EQ(dailyProgramNamed(*library, called)->get("Id").toInt32(), id) << called;
  }
  addWeeklyProgram(*library, "C", {"Staff", {"Été"}, "0"});
  addWeeklyProgram(*library, "E", {"Staff", {"9"}, "9"});
  EXPECT_EQ(weeklyProgramNamed(*library, "E", "staff")->get("DailyProgDay7").toInt16(), 2);
  for (const char* wrong : {"", "x' or 'a' = 'a", "pValue", "*", "[Name]", "5", "99999"}) {
    EXPECT_THROW((void)dailyProgramNamed(*library, wrong), Refusal) << wrong;
  }
}

TEST_F(ListsTest, ARefusedChangeChangesNothing) {
  addDailyProgram(*library, {"Office", {"08:00-12:00"}});
  addWeeklyProgram(*library, "C", {"Staff", {"Office"}, "0"});
  db().execute("update DailyPrograms set DailyProgramFlagD = False");
  db().execute("update WeeklyPrograms set WeeklyProgramFlagD = False");
  const std::pair<const char*, DailyProgramTexts> daily[] = {
      {"0", {{}, {"08:00-12:00"}}},
      {"1", {"Always", {{{}, "none"}}}},
      {"Office", {"Day", {{{}, {}, "18:00-19:00"}}}},
      {"Office", {"Never", {"07:00-12:00"}}},
      {"Office", {"", {"07:00-12:00"}}},
      {"Office", {{}, {"07:00-12:00", "14:00-13:00"}}}};
  for (const auto& [program, texts] : daily) {
    EXPECT_THROW(changeDailyProgram(*library, program, texts), Refusal) << program;
  }
  const std::pair<const char*, WeeklyProgramTexts> weekly[] = {{"0", {{}, {"Office"}, {}}},
                                                               {"0", {"All", {}, "Office"}},
                                                               {"Staff", {"Crew", {"0", "0", "0"}, {}}},
                                                               {"Staff", {"Crew", {}, "Ofice"}}};
  for (const auto& [program, texts] : weekly) {
    EXPECT_THROW(changeWeeklyProgram(*library, "C", program, texts), Refusal) << program;
  }
  EXPECT_THROW(addHoliday(*library, "Past", "25/12/2000", false), Refusal);
  EXPECT_EQ(listDailyPrograms(*library)[2].intervals, (std::vector<std::string>{"08:00-12:00", "none"}));
  EXPECT_EQ(query("select count(*) from DailyPrograms where DailyProgramFlagD = True"), "0");
  EXPECT_EQ(query("select count(*) from WeeklyPrograms where WeeklyProgramFlagD = True"), "0");
  EXPECT_EQ(query("select count(*) from WeeklyPrograms where Name = 'Staff' and DailyProgDay1 = 2"), "1");
}

}  // namespace
}  // namespace voxa
