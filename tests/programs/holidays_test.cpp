#include "programs/holidays.h"

#include "app/qdb.h"
#include "comm/com.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

class HolidaysTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    driver.calls.clear();
  }
  void add(int slot, const std::string& date, bool eachYear, bool flag) {
    const auto yesNo = [](bool on) { return on ? "True" : "False"; };
    db().execute("insert into Holidays values (" + std::to_string(slot) + ", 'H" + std::to_string(slot) +
                 "', " + date + ", " + yesNo(eachYear) + ", " + yesNo(flag) + ")");
  }
  std::string flagged() { return query("select count(*) from Holidays where HolidayFlagD = True"); }
  std::string sent() {
    const std::string all = driver.sent();
    driver.calls.clear();
    return all;
  }
  Holidays& holidays() { return glob->QDB().Holidays(); }
};

TEST_F(HolidaysTest, AHolidayIsOneLineAndItsFlagGoesWithASuccess) {
  add(3, "#12/25/2002#", true, true);
  add(4, "#12/25/2002#", false, true);
  add(12, "#1/2/2027#", false, false);
  const struct {
    std::int16_t slot, params;
    const char* lines;
    const char* flaggedAfter;
  } cases[] = {{3, DLDefault, "3403251200\r\n\r\n", "1"},
               {4, DLDefault, "3404251202\r\n\r\n", "0"},
               {12, DLDefault, "", "0"},
               {12, DLFull, "3412020127\r\n\r\n", "0"}};
  for (const auto& c : cases) {
    EXPECT_EQ(holidays().download(c.slot, CTActiveStations, "", c.params), 0);
    EXPECT_EQ(driver.count(CmReadDate), 0U) << "a download does not test";
    EXPECT_EQ(sent(), c.lines) << c.slot;
    EXPECT_EQ(flagged(), c.flaggedAfter) << c.slot;
  }
  EXPECT_EQ(holidays().download(9), -1);
  EXPECT_EQ(boxes(), std::vector<std::string>{"Can't find holidays 9|(Holidays.download)"});
}

TEST_F(HolidaysTest, AFailureKeepsTheFlagAndGeneralDownloadGoesOnBehindIt) {
  add(1, "Null", false, true);
  add(2, "#5/1/2027#", false, false);
  add(3, "#12/25/2026#", true, false);
  EXPECT_EQ(holidays().download(1, CTActiveStations, "", DLNoMessage), err::invalidNull);
  EXPECT_TRUE(boxes().empty());
  driver.answer = [](const auto& call) { return call.commandFile.starts_with("3402") ? 4 : 100; };
  bool tested = false;
  EXPECT_EQ(holidays().generalDownload(CTActiveStations, "", &tested), err::invalidNull);
  EXPECT_TRUE(tested);
  EXPECT_EQ(flagged(), "2");
  EXPECT_EQ(sent(), "3402010527\r\n\r\n3403251200\r\n\r\n");
  const auto shown = boxes();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_TRUE(shown[0].ends_with("|(Holidays.generalDownload)")) << shown[0];
}

TEST_F(HolidaysTest, DeleteErasesTheSlotOnActiveStationsAndLeavesTheRow) {
  addStation(2, "Annex");
  addStation(3, "Dark", false);
  add(7, "#5/1/2027#", false, false);
  EXPECT_EQ(holidays().delete_(7), 0);
  EXPECT_EQ(sent(), "3407000000\r\n\r\n3407000000\r\n\r\n");
  EXPECT_EQ(query("select count(*) from Holidays"), "1");
  driver.answer = [](const auto& call) { return call.command == CmSendCommand ? 2 : 100; };
  EXPECT_EQ(holidays().delete_(7), 2);
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(HolidaysTest, TheKindOfControllerLimitsTheSlots) {
  bool newVrmd1 = false;
  for (int slot = 1; slot <= 60; ++slot) {
    const bool full = slot > 20;
    EXPECT_EQ(holidays().getFreeId(newVrmd1 = false), full ? -1 : slot);
    EXPECT_EQ(holidays().getFreeId(newVrmd1 = true), slot);
    add(slot, "Null", false, false);
  }
  EXPECT_EQ(holidays().getFreeId(newVrmd1), -1);
}

}  // namespace
}  // namespace voxa
