#include "journal/journal.h"
#include "report/csv.h"
#include "report/figures.h"
#include "report/html.h"
#include "report/page.h"
#include "support/installation_test.h"
#include "work/cards.h"
#include "work/refusal.h"

namespace voxa {
namespace {

class ReportTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    addReader(1, "Front", 1, 1, 1);
    addCard(*library, {.name = "Ada", .number = "12", .code = "1", .group = "0", .until = "26/12/2026"});
    for (const char* row : {"#12/24/2026 18:05#, 'Front', '00', 'Ada', '00001200'",
                            "#12/24/2026 08:59#, 'Front', '00', 'Ada', '00001200'",
                            "#12/24/2026 00:00#, 'Lab', '24', '0013', '00001300'",
                            "#12/24/2026 23:59#, 'Lab', '10', Null, '0000001:'",
                            "#11/25/2026 00:00#, Null, '02', '0013', '00001300'",
                            "#12/24/2026 10:00#, 'Front', '30', Null, '00001200'",
                            "#11/24/2026 23:59#, 'Lab', '00', 'Ada', '00001200'",
                            "#12/25/2026 00:00#, 'Lab', '00', 'Ada', '00001200'"}) {
      glob->QDB().Journal().DB()->execute(
          "insert into Journal ([Date], ReaderName, TransactionType, CardholderName, TransactionData) values "
          "(" +
          std::string(row) + ")");
    }
  }
  Figures figures(const ReportQuestion& question) { return gatherFigures(*library, question); }
};

TEST_F(ReportTest, CountsThirtyDaysUpToTodayByDayHourAndDoor) {
  const Figures all = figures({.people = true});  // today is 24 December 2026
  EXPECT_EQ(all.all.counts, (std::array<std::uint64_t, 4>{3, 0, 1, 1}));
  EXPECT_EQ(all.others, 1U);
  ASSERT_EQ(all.days.size(), 30U);
  EXPECT_EQ(all.days.front().presentations(), 1U);
  EXPECT_EQ(all.days.back().presentations(), 4U);
  for (const auto& [hour, count] : {std::pair(0, 2), {8, 1}, {9, 0}, {18, 1}, {23, 1}})
    EXPECT_EQ(all.hours.at(hour).presentations(), count) << hour;
  ASSERT_EQ(all.doors.size(), 3U);
  EXPECT_EQ(all.doors[1].name, "Lab");
  EXPECT_EQ(all.doors[1].outcomes.refused(), 2U);
  ASSERT_EQ(all.unknownCards.size(), 1U);
  EXPECT_EQ(all.unknownCards[0].code, "0000001A");
  ASSERT_EQ(all.people.size(), 2U);
  EXPECT_EQ(all.people[1].name, "Ada");
  EXPECT_LT(all.people[1].first.days, all.people[1].last.days);
  ASSERT_EQ(all.cards.size(), 1U);
  EXPECT_FALSE(all.cards[0].expired);
  EXPECT_EQ(csvOf(all)[0].text.substr(0, 89),
            "Day,Presentations,Granted,RefusedByTime,RefusedByRights,UnknownCard\r\n2026-11-25,1,1,0,0,");
}

TEST_F(ReportTest, TellsOfOneDoorGroupAndTimeAndRefusesWhatItCannotRead) {
  EXPECT_EQ(figures({.door = "lab"}).all.presentations(), 2U);
  EXPECT_EQ(figures({.group = "0"}).all.presentations(), 2U);
  EXPECT_EQ(figures({.since = "24/12/2026 08:59", .until = "24/12/2026 18:04"}).all.presentations(), 1U);
  const Figures none = figures({.since = "1/1/2020", .until = "2/1/2020"});
  EXPECT_TRUE(none.people.empty() && none.cards[0].name.empty() && none.journalFrom);
  for (const ReportQuestion& wrong : {ReportQuestion{.since = "25/12/2026"},
                                      {.since = "1/1/2000"},
                                      {.since = "soon"},
                                      {.door = "Frnt"},
                                      {.group = "Nobody"}})
    EXPECT_THROW((void)figures(wrong), Refusal) << wrong.since << wrong.door << wrong.group;
}

TEST_F(ReportTest, ATextFromTheDatabaseIsNeverATagNorATemplate) {
  const std::string nasty = "<b>\"'&{{{style}}}";
  Figures with = figures({.people = true});
  with.doors[0].name = with.people[0].name = with.people[0].firstDoor = with.unknownCards[0].door = nasty;
  with.cards[0].name = with.cards[0].group = with.asked.group = with.asked.door = nasty;
  with.controllersNotKnown = nasty;
  const std::string page = htmlOf(pageOf(with));
  EXPECT_EQ(page.find("<b>"), std::string::npos);
  EXPECT_EQ(page.find("<style>"), page.rfind("<style>"));
  EXPECT_NE(page.find("&lt;b&gt;&quot;&apos;&amp;{{{style}}}"), std::string::npos);
  EXPECT_EQ(htmlOf(pageOf(figures({}))).find("Ada"), std::string::npos);
}

}  // namespace
}  // namespace voxa
