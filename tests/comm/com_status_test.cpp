#include <algorithm>
#include <array>
#include <filesystem>

#include "support/com_test.h"

namespace voxa {
namespace {

using test::ComTest;
using Lines = std::vector<std::string>;

TEST_F(ComTest, TheStatusTableHoldsWhatTheResultFilesSay) {
  const std::string none = "@01/01/1980 ";
  const std::pair<const char*, std::string> files[] = {
      {"X1X2\r\n   2   1730241226\r\n", "1.2=1" + none + "1.4=-1" + none},  // a date not in its columns
      {"1X6?\r\n    3   0000010126\r\n1234001 2359311299xx\r\n", "1.1=1@31/12/1999 23:59:00 1.3=-1" + none},
      {"?XXXXXXXXXXXXXX31", "1.16=-1" + none},    // 16 characters count
      {"11", "1.1=1" + none + "1.2=1" + none},    // cut off in the status line
      {"1\r\n    1   17302412", "1.1=1" + none},  // and in a date line
      {"1\r\n    1   9999999999\r\n    1   0130290224\r\n    1   0000010101", "1.1=1@29/02/2024 01:30:00 "},
      {"\x01\x02\xff\r\n\r\n", ""},
      {"\351\3771\r\n\351   00030130290224", "1.3=1@29/02/2024 01:30:00 "},  // one place each
      {"", ""}};
  for (const auto& [file, rows] : files) {
    db().execute("delete from ComStatus");
    driver.resultFiles[1] = file;
    com.UpdateComStatus(std::int16_t{1});
    EXPECT_EQ(table(), rows) << file;
  }
  calls();
  status(9, 1, 1);
  status(1, 5, 1);
  driver.resultFiles = {{1, "XX1"}, {7, "2"}};
  driver.answer = [](const auto& call) { return call.station == 7 ? 4 : 100; };
  com.UpdateComStatus(std::int16_t{1});  // adds to the station's rows
  EXPECT_EQ(query("select count(*) from ComStatus"), "3");
  com.UpdateComStatus();  // starts anew, active stations only
  EXPECT_EQ(calls(), "0:1,0 0:1,0 0:7,0");
  EXPECT_EQ(table(), "1.3=1" + none + "7.1=-1" + none);
  errors();
  // The file counts whatever the code was; without one nobody takes an earlier read's for it.
  driver.resultFiles[7] = "1";
  answerAll(101);
  EXPECT_TRUE(com.TestCom(CTStation, "Annex"));
  EXPECT_EQ(errors(), "|<msgError> 101: ");
  driver.resultFiles.clear();
  EXPECT_FALSE(com.TestCom(CTStation, "Annex"));
  EXPECT_FALSE(std::filesystem::exists("RS007.OUT"));
  errors();
  // One that succeeded has left a file. While communications are inhibited, the last one stands.
  com.inhibitCom = true;
  com.UpdateComStatus(std::int16_t{7});
  write("RS007.OUT", "X2");
  com.UpdateComStatus(std::int16_t{7});
  EXPECT_EQ(query("select Status from ComStatus where StationID = 7 and CtrAddr = 2"), "-1");
  EXPECT_EQ(boxes(), Lines{});
  com.inhibitCom = false;
  answerAll(100);
  com.UpdateComStatus(std::int16_t{7});
  const auto shown = boxes();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_TRUE(shown[0].starts_with("Unexpected error|Error 52: Annex: ")) << shown[0];
}

TEST_F(ComTest, AStationThatCannotBeReadStopsNoOtherAndItsControllersAreUnknown) {
  using Places = std::vector<ControllerPlace>;
  addReader(4, "Yard", 9, 2, 1);
  addReader(5, "Attic", 7, 4, 1);
  db().execute("insert into Readers (Id, Name, StationId) values (6, 'Spare', 7)");
  driver.resultFiles = {{1, "XX1"}, {7, "XX2"}};
  EXPECT_FALSE(com.TestCom());
  EXPECT_EQ(com.notKnownToAnswer(CTActiveStations, ""), (Places{{7, 3}, {7, 4}}));
  EXPECT_EQ(com.notKnownToAnswer(CTReader, "Attic"), (Places{{7, 4}}));
  EXPECT_EQ(com.notKnownToAnswer(CTStation, "Local"), Places{});

  // The first station's row cannot be told to the driver.
  driver.resultFiles[7] = "XX11";
  db().execute("update Stations set ModemIniFile = '//far/m.ini' where Id = 1");
  calls();
  EXPECT_FALSE(com.TestCom());
  EXPECT_EQ(calls(), "0:7,0");
  EXPECT_EQ(com.notKnownToAnswer(CTActiveStations, ""), (Places{{1, 3}}));
  EXPECT_TRUE(prompts.boxes.at(0).prompt.starts_with("Unexpected error\r\nError 5: Local: "));
  boxes();
  db().execute("update Stations set ModemIniFile = '' where Id = 1");

  // An earlier answer is none any more when the file does not name the controller, or when there is none
  // behind a code that is not the line's. Retry asks again.
  EXPECT_TRUE(com.TestCom());
  EXPECT_EQ(com.notKnownToAnswer(CTReader, "Door"), Places{});
  driver.resultFiles[1] = "XX?";
  EXPECT_TRUE(com.TestCom(CTReader, "Door"));
  EXPECT_EQ(com.notKnownToAnswer(CTReader, "Door"), (Places{{1, 3}}));
  driver.resultFiles.clear();
  answerAll(101);
  EXPECT_FALSE(com.TestCom(CTReader, "Door"));
  EXPECT_EQ(com.notKnownToAnswer(CTReader, "Door"), (Places{{1, 3}}));
  com.noteSilence(1, 3);
  prompts.answers = {Answer::ignore};
  EXPECT_FALSE(com.MsgChooseAbort());
  EXPECT_NE(boxes().at(0).find("|Local Controller 3  -  Door  -  Gate|"), std::string::npos);
  command("31");
  calls();
  EXPECT_EQ(com.sendToReader(CmSendCommand, "Door"), 0);
  EXPECT_EQ(calls(), "") << "passed over";
}

TEST_F(ComTest, ComponentsAreTestedAndAskedAbout) {
  driver.resultFiles = {{1, "XX1"}, {7, "1121"}};
  const struct {
    ComponentType type;
    const char* name;
    bool answers;
    const char *calls, *question;  // when some controller is listed
  } cases[] = {
      {CTActiveStations, "", false, "0:1,0 0:7,0", "|Annex Controller 3  -  Shed"},
      {CTStation, "Local", true, "0:1,0", ""},
      {CTStation, "Annex", false, "0:7,0", "|Annex Controller 3  -  Shed"},
      {CTStation, "Nowhere", true, "", ""},
      // Of a reader every controller of its address is listed, of whatever station and status.
      {CTReader, "Door", true, "0:1,0", "|Local Controller 3  -  Door  -  Gate|Annex Controller 3  -  Shed"},
      {CTReader, "Shed", false, "0:7,0",
       "|Local Controller 3  -  Door  -  Gate|Annex Controller 3  -  Shed"}};
  for (const auto& c : cases) {
    EXPECT_EQ(com.TestCom(c.type, c.name), c.answers) << c.name;
    EXPECT_EQ(calls(), c.calls) << c.name;
    for (const Answer answer : {Answer::abort, Answer::ignore}) {
      const bool asks = *c.question != '\0';
      if (asks) prompts.answers = {answer};
      EXPECT_EQ(com.MsgChooseAbort(c.type, c.name), asks && answer == Answer::abort) << c.name;
      EXPECT_EQ(prompts.boxes.empty() ? style::abortRetryIgnore : prompts.boxes[0].style,
                style::abortRetryIgnore);
      const std::string question = std::string("<msgChooseAbort1>") + c.question +
                                   "|<msgChooseAbort2>|<msgChooseAbort3>|<msgChooseAbort4>";
      EXPECT_EQ(boxes(), asks ? Lines{question} : Lines{});
    }
  }
  // Retry tests again: still silent asks again, all answering goes on.
  prompts.answers = {Answer::retry, Answer::retry};
  int asked = 0;
  driver.answer = [&](const auto&) {
    if (++asked == 3) driver.resultFiles[7] = "1111";
    return 100;
  };
  EXPECT_FALSE(com.MsgChooseAbort());
  EXPECT_EQ(boxes().size(), 2U);
  EXPECT_EQ(asked, 4);

  // A person who aborted is asked again.
  driver.resultFiles[7] = "2";
  bool tested = false;
  prompts.answers = {Answer::abort, Answer::ignore};
  EXPECT_FALSE(com.readyToSend(CTStation, "Annex", &tested));
  EXPECT_FALSE(tested);
  EXPECT_TRUE(com.readyToSend(CTStation, "Annex", &tested));
  EXPECT_TRUE(tested);
  calls();
  EXPECT_TRUE(com.readyToSend(CTStation, "Annex", &tested));
  EXPECT_EQ(calls(), "");
  com.inhibitCom = true;
  EXPECT_TRUE(com.readyToSend(CTStation, "Annex", nullptr));
  EXPECT_EQ(boxes().size(), 2U);
  com.inhibitCom = false;
  db().execute("update Stations set Active = False where Id = 7");
  EXPECT_TRUE(com.TestCom(CTStation, "Annex"));  // nothing goes to an inactive station
  EXPECT_FALSE(com.TestCom(CTStation, "O'Hara"));
  EXPECT_EQ(boxes().size(), 1U);
}

}  // namespace
}  // namespace voxa
