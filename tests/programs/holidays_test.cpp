#include "programs/holidays.h"

#include "comm/com.h"
#include "platform/datetime.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

class HolidaysTest : public test::InstallationTest {
 protected:
  void SetUp() override { createInstallation(); }
  void add(int slot, const std::string& values) {
    const std::string n = std::to_string(slot);
    db().execute("insert into Holidays values (" + n + ", 'H" + n + "', " + values + ")");
  }
  std::string flagged() { return query("select count(*) from Holidays where HolidayFlagD = True"); }
  Holidays& holidays() { return glob->QDB().Holidays(); }
};

TEST_F(HolidaysTest, AHolidayIsOneLineAndItsFlagGoesWithASuccess) {
  add(3, "#12/25/2002#, True, True");
  add(4, "#12/25/2002#, False, True");
  add(12, "#1/2/2027#, False, False");
  const struct {
    std::int16_t slot, params;
    const char* lines;
    const char* flaggedAfter;
  } cases[] = {{3, DLDefault, "3403251200\r\n\r\n", "1"},
               {4, DLDefault, "3404251202\r\n\r\n", "0"},
               {12, DLDefault, "", "0"},
               {12, DLFull, "3412020127\r\n\r\n", "0"}};
  for (const auto& c : cases) {
    driver.calls.clear();
    EXPECT_EQ(holidays().download(c.slot, CTActiveStations, "", c.params), 0);
    EXPECT_EQ(driver.count(CmReadDate), 0U) << "a download does not test";
    EXPECT_EQ(driver.sent(), c.lines) << c.slot;
    EXPECT_EQ(flagged(), c.flaggedAfter) << c.slot;
  }
  EXPECT_EQ(holidays().download(9), -1);
  EXPECT_EQ(boxes(), std::vector<std::string>{"Can't find holidays 9|(Holidays.download)"});
}

TEST_F(HolidaysTest, ADayThatControllersWouldTakeForAnotherIsNotSent) {
  clock.moment = toDateTime({2079, 6, 15});
  add(1, "#12/25/2101#, False, True");
  add(2, "#12/25/2100#, False, True");  // 00 is every year
  add(3, "#2/1/2029#, False, True");
  add(4, "#12/25/2029#, True, True");
  EXPECT_EQ(holidays().generalDownload(), err::overflow);
  EXPECT_EQ(driver.sent(), "3401251201\r\n\r\n3404251200\r\n\r\n");
  EXPECT_EQ(flagged(), "2");
  clock.moment = toDateTime({2031, 6, 15});
  EXPECT_EQ(holidays().download(3), 0);
  EXPECT_EQ(driver.calls.back().commandFile, "3403010229\r\n\r\n");
}

TEST_F(HolidaysTest, GeneralDownloadGoesOnBehindAFailureWhoseFlagStays) {
  add(1, "Null, False, True");
  add(2, "#5/1/2027#, False, False");
  add(3, "#12/25/2026#, True, False");
  driver.answer = [](const auto& call) { return call.commandFile.starts_with("3402") ? 4 : 100; };
  EXPECT_EQ(holidays().generalDownload(), err::invalidNull);
  EXPECT_EQ(flagged(), "2");
  EXPECT_EQ(driver.sent(), "3402010527\r\n\r\n3403251200\r\n\r\n");
  const auto shown = boxes();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_TRUE(shown[0].ends_with("|(Holidays.generalDownload)")) << shown[0];
}

TEST_F(HolidaysTest, DeleteErasesTheSlotOnActiveStationsAndLeavesTheRow) {
  addStation(2, "Annex");
  addStation(3, "Dark", false);
  add(7, "#5/1/2027#, False, False");
  EXPECT_EQ(holidays().delete_(7), 0);
  EXPECT_EQ(driver.sent(), "3407000000\r\n\r\n3407000000\r\n\r\n");
  EXPECT_EQ(query("select count(*) from Holidays"), "1");
}

TEST_F(HolidaysTest, TheKindOfControllerLimitsTheSlots) {
  bool newVrmd1 = false;
  for (int slot = 1; slot <= 61; ++slot) {
    EXPECT_EQ(holidays().getFreeId(newVrmd1 = false), slot > 20 ? -1 : slot);
    EXPECT_EQ(holidays().getFreeId(newVrmd1 = true), slot > 60 ? -1 : slot);
    add(slot, "Null, False, False");
  }
}

}  // namespace
}  // namespace voxa
