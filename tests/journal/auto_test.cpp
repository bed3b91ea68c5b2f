#include "journal/journal_test.h"
#include "messages/strings.h"

namespace voxa::test {
namespace {

class ReadAutoTest : public JournalTest {
 protected:
  void SetUp() override {
    JournalTest::SetUp();
    memory = good + "\r\n";
    addStation(4, "Far", false);
    db().execute("update Stations set Phone = '0123' where Id = 4");
    addReader(10, "Gate", 4, 1, 1);
    addReader(11, "Yard", 4, 2, 1);
  }
  /// Log.txt with the seconds alone of the times, CR LF as "|".
  std::string log() {
    std::string text = textOf("Log.txt");
    for (std::size_t at = 0; (at = text.find("24/12/2026 18:05:", at)) != std::string::npos;)
      text.erase(at, 17);
    return oneLine(text);
  }
};

TEST_F(ReadAutoTest, EveryControllerAndTheDialUpStations) {
  library->Strings().insert("LogProcessStart", "Start", 0, "Journal", "Message");
  // The first station has a telephone number, a reader has no address yet, a station is not in use.
  db().execute("update Stations set Phone = '0456' where Id = 1");
  addReader(12, "Desk", 1, 2, 1);
  db().execute("insert into Readers (Id, Name, StationId) values (13, 'Spare', 3)");
  addStation(5, "Idle", false);
  addReader(14, "Attic", 5, 1, 1);
  com().updateDBComStatus(3, 5, -1, clock.moment);  // at an earlier test: it answers now
  std::string active;
  const auto answer = driver.answer;
  int attempts = 0;
  driver.answer = [&](const RecordingDriver::Call& call) -> std::int16_t {
    if (call.command == CmConnect) return ++attempts == 1 ? 7 : 100;  // engaged at first
    if (call.command == CmDisconnect) {
      active += query("select Active from Stations where Id = " + std::to_string(call.station));
    }
    return answer(call);
  };
  EXPECT_EQ(journal().readAuto(), 0);
  const auto controller = [](const std::string& at, const std::string& name) {
    return at + "LogControllerStart " + name + "|" + at + "LogReset|" + at + "LogReadTrans|" + at +
           "LogDelete|" + at + "LogControllerEnd|";
  };
  EXPECT_EQ(log(), "00 : Start|20 : LogConnect Local|20 : msgUIStationConnected|" +
                       controller("25 : ", "Local - 2") +
                       "25 : LogDisconnect Local|25 : msgUIStationDisconnected|" +
                       controller("25 : ", "North - 5") + "45 : LogConnect Far|45 : msgUIStationConnected|" +
                       controller("50 : ", "Far - 1") + controller("50 : ", "Far - 2") +
                       "50 : LogDisconnect Far|50 : msgUIStationDisconnected|50 : LogProcessEnd|");
  EXPECT_EQ(rowCount(), 4U);
  EXPECT_EQ(driver.count(CmSendClear), 4U) << "what the log says is deleted";
  EXPECT_TRUE(files::exists("Backup/J00402 24Dec2026-18.05.50.DAT"));
  EXPECT_EQ(active, "TrueTrue");
  EXPECT_EQ(query("select Active from Stations where Id = 4"), "False");
  EXPECT_TRUE(boxes().empty());
}

TEST_F(ReadAutoTest, AFailureIsLoggedAndTheRunGoesOn) {
  db().execute("update Stations set Phone = '', Active = True where Id = 4");
  const auto answer = driver.answer;
  const std::string cant = "Can't transfer transactions from controller |";
  const std::string line3 = " 3: |North Controller 5";
  const struct {
    ComCommandsEnum failing;
    std::int16_t result;
    std::string logged;
    std::size_t rows;
    std::size_t clears;
  } cases[] = {{CmReadDate, 3, cant + line3, 2, 2},
               {cmReadMemory, 3, cant + line3, 3, 2},  // what was read before the line broke
               {CmSendClear, 3, "Can't delete controller buffer |" + line3, 3, 3},
               {CmConnect, 3075, cant + "Error 3075: ", 2, 2}};  // no driver call fails, but the insert
  for (const auto& c : cases) {
    if (c.failing == CmConnect) db().execute("update Stations set Name = 'N''th' where Id = 3");
    driver.answer = [&](const RecordingDriver::Call& call) -> std::int16_t {
      const std::int16_t result = answer(call);
      return call.command == c.failing && call.station == 3 ? std::int16_t{3} : result;
    };
    driver.calls.clear();
    EXPECT_EQ(journal().readAuto(), c.result);
    EXPECT_NE(log().find(c.logged), std::string::npos) << log();
    EXPECT_EQ(rowCount(), c.rows);
    EXPECT_EQ(driver.count(CmSendClear), c.clears);
    journal().DB()->execute("delete from Journal");
  }
  EXPECT_TRUE(boxes().empty());
}

TEST_F(ReadAutoTest, ALineThatCannotBeDialledIsAFailureAndInhibitedCallsAreNotLogged) {
  const auto answer = driver.answer;
  driver.answer = [&](const auto& call) {
    return call.command == CmConnect ? std::int16_t{7} : answer(call);
  };
  EXPECT_EQ(journal().readAuto(), 7);
  EXPECT_EQ(rowCount(), 1U);
  EXPECT_EQ(log().find("LogControllerStart Far"), std::string::npos);
  com().inhibitCom = true;
  (void)journal().readAuto();
  EXPECT_EQ(log().find("LogReset"), std::string::npos);
}

TEST_F(ReadAutoTest, AStationIsReadControllerByController) {
  addReader(12, "Shed", 3, 6, 1);
  addReader(13, "Barn", 3, 6, 2);
  driver.answer = [this](const RecordingDriver::Call& call) -> std::int16_t {
    if (call.address == 45) return 2;
    if (call.command == cmReadMemory) write("J.DAT", memory);
    if (call.command == CmSendClear) memory = "";
    return 100;
  };
  for (int time = 0; time < 3; ++time) {
    const auto reads = journal().readStation(3);
    ASSERT_EQ(reads.size(), 2U);
    EXPECT_EQ(reads[0].place.address * 100 + reads[0].result, 502);
    EXPECT_NE(oneLine(reads[0].failure).find("|North Controller 5"), std::string::npos);
    EXPECT_EQ(reads[1].place.address * 100 + reads[1].result, 600);
    EXPECT_EQ(reads[1].failure, "");
    EXPECT_EQ(rowCount(), 1U) << "once, however often the other controller is silent";
  }
  EXPECT_EQ(journal().readStation(4).at(0).result, -1) << "not in use";
  EXPECT_TRUE(boxes().empty());
}

TEST_F(ReadAutoTest, ARunThatBreaksOffHangsUp) {
  const auto answer = driver.answer;
  driver.answer = [&](const RecordingDriver::Call& call) -> std::int16_t {
    if (call.command == cmReadMemory && call.station == 4) {
      files::remove("Log.txt");
      files::makeFolder("Log.txt");
    }
    return answer(call);
  };
  EXPECT_NE(journal().readAuto(), 0);
  EXPECT_EQ(boxes().size(), 1U);
  EXPECT_EQ(driver.count(CmDisconnect), 1U);
  EXPECT_EQ(query("select Active from Stations where Id = 4"), "False");
}

}  // namespace
}  // namespace voxa::test
