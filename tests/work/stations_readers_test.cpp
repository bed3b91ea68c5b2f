#include <filesystem>

#include "comm/com.h"
#include "comm/reader.h"
#include "support/installation_test.h"
#include "work/daily_programs.h"
#include "work/holidays.h"
#include "work/readers.h"
#include "work/refusal.h"
#include "work/stations.h"
#include "work/weekly_programs.h"

namespace voxa {
namespace {

class PlacesTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    addDailyProgram(*library, {"Office", {"08:00-12:00"}});
    addWeeklyProgram(*library, "C", {"Staff", {"Office"}, "0"});
    addHoliday(*library, "Strike", "03/05/2027", false);
    forgetMarks();
  }
  void forgetMarks() {
    db().execute("update DailyPrograms set DailyProgramFlagD = False");
    db().execute("update WeeklyPrograms set WeeklyProgramFlagD = False");
    db().execute("update Holidays set HolidayFlagD = False");
  }
  /// Which programs and holidays are marked to be sent; forgotten then.
  std::string marks() {
    const std::string all = query("select count(*) from DailyPrograms where DailyProgramFlagD = True") +
                            query("select count(*) from WeeklyPrograms where WeeklyProgramFlagD = True") +
                            query("select count(*) from Holidays where HolidayFlagD = True");
    forgetMarks();
    return all;
  }
  AddedReader add(const std::string& name, const std::string& station, const std::string& address,
                  const std::string& position) {
    return voxa::addReader(*library, {name, station, address, position});
  }
  static constexpr const char* none = "000";
  static constexpr const char* all = "211";  // daily programs 1 and 2; the built-in programs 0 are never sent
};

TEST_F(PlacesTest, WhatANewControllerMayLackIsMarked) {
  EXPECT_TRUE(add("Front", "local", "1", "1").newController);
  EXPECT_EQ(marks(), all);
  EXPECT_FALSE(add("Side", "Local", "1", "2").newController);
  EXPECT_EQ(voxa::addressFault("Last", Value(16)), "");
  EXPECT_EQ(marks(), none);
  StationTexts annex;
  annex.name = "Annex";
  annex.active = false;
  EXPECT_EQ(voxa::addStation(*library, annex).port, 2);
  EXPECT_TRUE(add("Garage", "Annex", "1", "1").newController) << "the same address on another line";
  EXPECT_EQ(marks(), all);
  changeStation(*library, "Annex", {.phone = "1234"});
  EXPECT_EQ(marks(), none);
  changeStation(*library, "ANNEX", {.active = true});
  EXPECT_EQ(marks(), all) << "what was sent meanwhile did not reach it";
  changeStation(*library, "Annex", {.active = true});
  EXPECT_EQ(marks(), none);
  EXPECT_EQ(boxes(), std::vector<std::string>{});
}

TEST_F(PlacesTest, WhatTheDriverCannotBeToldIsNotStored) {
  std::filesystem::create_directory("S001.ini");  // in the place of the file
  EXPECT_THROW(add("Front", "Local", "1", "1"), Error);
  EXPECT_THROW(changeStation(*library, "Local", {.name = "Main", .active = true}), Error);
  EXPECT_EQ(query("select count(*) from Readers"), "0");
  EXPECT_EQ(query("select Name from Stations"), "Local");
  EXPECT_EQ(marks(), none);
}

TEST_F(PlacesTest, OneLineInUseIsOnAPort) {
  voxa::addStation(*library, {.name = "Spare", .port = "1", .active = false});
  EXPECT_THROW(voxa::addStation(*library, {.name = "Third", .port = "1"}), Refusal);
  EXPECT_THROW(changeStation(*library, "Spare", {.active = true}), Refusal);
  changeStation(*library, "Local", {.port = "1", .active = true});  // it is not in its own way
  EXPECT_EQ(query("select count(*) from Stations where Active = True"), "1");
}

TEST_F(PlacesTest, ASpeedIsNotedWhenEveryBroadcastWasMade) {
  for (const std::int16_t code : {std::int16_t{4}, std::int16_t{100}}) {
    answerAll(code);
    const bool told = code == 100;
    try {
      changeLineSpeed(*library, "Local", "19200");
      EXPECT_TRUE(told);
    } catch (const Refusal& refusal) {
      EXPECT_FALSE(told) << refusal.what();
      EXPECT_EQ(refusal.mnemonic(), "msgCantSendCommand");
    }
    EXPECT_EQ(query("select ComSpeed from Stations"), told ? "19200" : "4800");
    EXPECT_NE(textOf("S001.ini").find(told ? "BDR:19200" : "BDR:4800"), std::string::npos);
  }
}

TEST_F(PlacesTest, AHolidayStaysUntilEveryControllerHasErasedIt) {
  add("Front", "Local", "1", "1");
  add("Back", "Local", "2", "1");
  forgetMarks();
  const struct {
    const char* answering;
    std::int16_t code;
    std::size_t silent;
    bool deleted;
  } cases[] = {{"12", 100, 1, false}, {"1X", 100, 1, false}, {"11", 4, 0, false}, {"11", 100, 0, true}};
  for (const auto& c : cases) {
    driver.resultFile = c.answering;
    answerAll(100);
    library->Com().TestCom();
    driver.calls.clear();
    answerAll(c.code);
    const Report report = deleteHoliday(*library, findHoliday(*library, "strike").slot);
    EXPECT_EQ(report.controllers.size(), c.silent) << c.answering;
    for (const Report::Controller& controller : report.controllers) {
      EXPECT_EQ(controller.outcome, Outcome::silent) << controller.name;
    }
    EXPECT_EQ(report.rows.front().outcome == Outcome::done, c.deleted);
    EXPECT_EQ(report.rows.front().notices.size(), c.code != 100 ? 1U : 0U);
    EXPECT_TRUE(driver.sent().starts_with("3401000000\r\n"));
    EXPECT_EQ(listHolidays(*library).empty(), c.deleted);
    EXPECT_EQ(marks(), c.deleted ? "000" : "001");
  }
  EXPECT_EQ(boxes(), std::vector<std::string>{});
}

}  // namespace
}  // namespace voxa
