#include "comm/com.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <new>

#include "comm/station_result.h"
#include "files/command_file.h"
#include "messages/strings.h"
#include "platform/driver/library_driver.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

using Lines = std::vector<std::string>;

constexpr std::int16_t shortOf(int number) {
  return static_cast<std::int16_t>(number);
}

class ComTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    driver.resultFile.reset();  // the tests write their own
    addStation(7, "Annex");
    addStation(9, "Idle", false);
    addReader(1, "Door", 1, 3, 1);
    addReader(2, "Gate", 1, 3, 2);
    addReader(3, "Shed", 7, 3, 1);
    for (const char* text : {"msgError", "msgComErr301", "msgComErr5", "msgComErr247", "msgChooseAbort1",
                             "msgChooseAbort2", "msgChooseAbort3", "msgChooseAbort4"}) {
      library->Strings().insert(text, std::string("<") + text + ">", 0, "Test", "Message");
    }
  }
  void status(int station, int controller, int value) {
    com.updateDBComStatus(shortOf(station), shortOf(controller), shortOf(value), clock.moment);
  }
  /// "station.controller=status@date" of every row.
  std::string table() {
    std::string all;
    const auto rows = db().openRecordset("select * from ComStatus order by StationID, CtrAddr");
    for (; !rows->eof(); rows->moveNext()) {
      all += rows->get("StationID").toText() + "." + rows->get("CtrAddr").toText() + "=" +
             rows->get("Status").toText() + "@" + rows->get("Date").toText() + " ";
    }
    return all;
  }
  std::string errors() { return oneLine(com.popErrorList()); }
  void command(const std::string& line) {
    library->CommandFile().fopen();
    library->CommandFile().fprint(line);
    library->CommandFile().fclose();
  }
  Com& com = glob->Com();
};

TEST_F(ComTest, EveryDriverCodeHasItsStatusAndErrorLines) {
  const std::string readers = "|Local Controller 3  -  Door  -  Gate";
  const struct {
    ComCommandsEnum command;
    int controller;
    std::vector<int> codes;
    std::string text, names;  // behind the code, and behind that
  } cases[] = {{CmSendDate, 3, {0, 17, 101, 255, -1, 32767, -32768}, "", ""},
               {CmSendClear, 3, {1, 5, 16}, "<msgComErr301>", readers},
               {CmSendDate, 3, {247}, "<msgComErr247>", readers},
               {CmSendCommand, 3, {5}, "<msgComErr5>", readers},
               {CmSendCommand, 95, {5}, "<msgComErr5>", "|Local"},
               {CmSendCommand, 95, {247}, "<msgComErr247>", ""},
               {CmConnect, 0, {4}, "<msgComErr301>", "|Local"}};
  command("31");
  EXPECT_EQ(com.Send(CmSendDate, 1, 3), 0);  // 100
  EXPECT_EQ(errors(), "");
  for (const auto& c : cases) {
    for (const int code : c.codes) {
      answerAll(shortOf(code));
      EXPECT_EQ(com.Send(c.command, 1, shortOf(c.controller)), code);
      EXPECT_EQ(errors(), "|<msgError> " + std::to_string(code) + ": " + c.text + c.names) << c.command;
      EXPECT_EQ(com.Send(c.command, 1, shortOf(c.controller), true), code);
      EXPECT_EQ(errors(), "") << "silent";
    }
  }
  // Lines gather until they are read; a failure on the line replaces them, any other joins an empty list
  // only.
  const std::string inactive = library->Strings().read("msgDownloadToUnactive") + " (Idle Controller 3)";
  answerAll(101);
  com.Send(CmSendCommand, 1, 3);
  com.Send(CmSendCommand, 9, 3);
  answerAll(255);
  com.Send(CmSendCommand, 1, 3);
  EXPECT_EQ(oneLine(com.errorList), "|<msgError> 101: |" + inactive);
  answerAll(4);
  com.Send(CmReadStatus, 1, 3);
  EXPECT_EQ(errors(), "|<msgError> 4: <msgComErr301>" + readers);

  // The station's result file tells whom a date read of the whole station did not reach.
  const std::pair<const char*, std::vector<int>> files[] = {{"123456X?11111112666\r\n", {2, 3, 4, 5, 6, 16}},
                                                            {"XX2", {3}},  // cut off
                                                            {"\xff\r\n22222", {}},
                                                            {"", {}}};
  for (const auto& [file, failed] : files) {
    write("RS009.OUT", file);
    EXPECT_EQ(com.Send(CmReadDate, 9, 0, false, true), 247);
    std::string expected = "|<msgError> 247: <msgComErr247>";
    for (const int controller : failed) expected += "|Idle Controller " + std::to_string(controller);
    EXPECT_EQ(errors(), expected) << file;
  }
  EXPECT_EQ(boxes(), Lines{});
  EXPECT_EQ(prompts.busyDepth, 0);
  EXPECT_EQ(com.getName(33, 2), "Unknown station Controller 2");
}

TEST_F(ComTest, AddressesAreTranslatedAndSilentControllersSkipped) {
  status(1, 3, -1);
  for (const int controller : {1, 2, 16}) status(1, controller, 1);
  status(7, 1, 1);
  command("31");
  const struct {
    ComCommandsEnum command;
    int station, controller, status;
    const char* calls;
  } cases[] = {{CmSendDate, 7, 5, 0, "1:7,45"},   {CmSendDate, 7, 17, 0, "1:7,17"},
               {CmSendDate, 1, 95, 0, "1:1,95"},  {CmSendDate, 7, 0, 0, "1:7,0"},
               {CmSendDate, 1, 3, 0, ""},         {CmReadDate, 1, 3, 0, "0:1,43"},
               {cmReadMemory, 1, 3, 0, "3:1,43"}, {CmResetReadPointer, 7, 1, 0, "4:7,41"},
               {CmConnect, 1, 0, 0, "7:1,0"},     {CmSendCommand, 1, 0, 0, "6:1,41 6:1,42 6:1,56"},
               {CmDisconnect, 9, 3, 0, "8:9,0"},  {CmReadStatus, 9, 3, -1, ""}};  // 9 is inactive
  for (const auto& c : cases) {
    EXPECT_EQ(com.Send(c.command, shortOf(c.station), shortOf(c.controller)), c.status);
    EXPECT_EQ(calls(), c.calls) << c.command << " " << c.station << "," << c.controller;
  }
  EXPECT_EQ(com.Send(CmReadStatus, 9, 3, false, true), 0);  // autodetection
  EXPECT_EQ(calls(), "2:9,43");
  driver.answer = [](const auto& call) { return call.address == 42 ? 101 : 100; };
  EXPECT_EQ(com.Send(CmSendDate, 1), 101);  // the first controller that fails ends the round
  EXPECT_EQ(calls(), "1:1,41 1:1,42");
  com.inhibitCom = true;
  EXPECT_EQ(com.Send(CmSendDate, 1), 0);
  com.inhibitCom = false;
  command("");
  EXPECT_EQ(com.Send(CmSendCommand, 7, 1), 0);  // nothing to send
  for (const int none : {9, 11, -1, 32767}) {
    EXPECT_EQ(com.Send(static_cast<ComCommandsEnum>(none), 7, 1), err::invalidArgument);
  }
  EXPECT_EQ(calls(), "");
  EXPECT_EQ(boxes(), Lines(4, "Unexpected error|Error 5: Invalid argument: no such command|(Com.send)"));
}

TEST_F(ComTest, FollowUpsOfMemoryReadsAndClears) {
  const struct {
    ComCommandsEnum command;
    int controller;
    std::vector<int> answers;
    int status;
    const char* calls;
  } cases[] = {{cmReadMemory, 1, {101, 100}, 101, "3:1,41 0:1,41"},
               {cmReadMemory, 1, {32767, 3, 100, 100}, 0, "3:1,41 0:1,41 4:1,41 3:1,41"},
               {cmReadMemory, 1, {101, 3, 7}, 7, "3:1,41 0:1,41 4:1,41"},
               {cmReadMemory, 0, {101, 3, 100, 102}, 102, "3:1,0 0:1,0 4:1,0 3:1,0"},
               {cmReadMemory, 1, {99}, 99, "3:1,41"},
               {CmSendClear, 1, {8, 100}, 8, "5:1,41 0:1,41"},
               {CmSendClear, 95, {8, 100}, 8, "5:1,95 0:1,0"}};
  for (const auto& c : cases) {
    std::size_t next = 0;
    driver.answer = [&](const auto&) { return shortOf(c.answers.at(next++)); };
    write("RS001.OUT", "2");
    EXPECT_EQ(com.Send(c.command, 1, shortOf(c.controller)), c.status) << c.calls;
    EXPECT_EQ(calls(), c.calls);
    // A date read of the whole station starts without its old result file.
    EXPECT_EQ(std::filesystem::exists("RS001.OUT"), c.controller == 1) << c.calls;
  }
}

TEST_F(ComTest, TheLogTellsEveryCallInOrder) {
  com.writeLog = true;
  const auto logged = [&] {
    const std::string time = "24/12/2026 18:05:00 : ";
    std::string text = oneLine(textOf("COM.LOG"));
    std::filesystem::remove("COM.LOG");
    for (std::size_t at = 0; (at = text.find(time)) != std::string::npos;) text.replace(at, time.size(), "@");
    return text;
  };
  command("31A");
  com.Send(CmSendCommand, 1, 2);
  EXPECT_EQ(logged(), "@SDCMD(1,42)|31A||@Returns 100||");
  driver.answer = [&](const auto& call) { return call.command == CmReadDate ? 3 : 101; };
  com.Send(cmReadMemory, 1, 2);  // the date read inside it stands between its call and its result
  EXPECT_EQ(logged(), "@RDMEM(1,42)|@RDDAT(1,42)|@Returns 3||@Returns 101||");
  com.Send(CmReadDate, 9, 2);
  EXPECT_EQ(logged(), "@RDDAT(9,42)|");
  status(1, 3, -1);
  com.Send(CmSendDate, 1, 3);
  EXPECT_EQ(logged(), "");
  com.inhibitCom = true;
  com.Send(CmDisconnect, 1);
  EXPECT_EQ(logged(), "@DISNNECT(1,0)|@Returns 100||");
  com.inhibitCom = false;
  com.logFileName = folder + "\\no\\COM.LOG";  // cannot be written: told, and nothing goes out unlogged
  calls();
  EXPECT_EQ(com.Send(CmConnect, 1), err::badFileNumber);
  EXPECT_EQ(calls(), "");
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(ComTest, ComponentsFanOut) {
  command("31");
  const struct {
    ComponentType type;
    const char* name;
    int status;
    const char *calls, *box;
  } cases[] = {{CTActiveStations, "", 3, "6:1,0 6:7,0", ""},  // a failing station does not stop the next
               {CTStation, "annex", 0, "6:7,0", ""},
               {CTStation, "Nowhere", -1, "", "Can't find station Nowhere|(Station.getId)"},
               {CTStation, "O'Hara", -1, "", "Can't find station O'Hara|DB Error 3075: "},
               {CTReader, "Gate", 3, "6:1,43", ""},
               {CTReader, "Nowhere", -1, "", "Can't find reader Nowhere|(Reader.getControllerAddr)"},
               {CTReader, "O'Hara", -1, "", "Can't find reader O'Hara|DB Error 3075: "}};
  driver.answer = [](const auto& call) { return call.station == 1 ? 3 : 100; };
  for (const auto& c : cases) {
    EXPECT_EQ(com.sendToComp(CmSendCommand, c.type, c.name), c.status) << c.name;
    EXPECT_EQ(calls(), c.calls);
    const auto shown = boxes();
    ASSERT_EQ(shown.size(), *c.box == '\0' ? 0U : 1U) << c.name;
    EXPECT_TRUE(shown.empty() || shown[0].starts_with(c.box)) << shown[0];
  }
  EXPECT_EQ(com.sendBrodcast(CmSendDate), 3);
  EXPECT_EQ(calls(), "1:1,95 1:7,95");
  errors();
  EXPECT_EQ(com.sendCommand("34"), 3);
  EXPECT_EQ(driver.sent(), "34\r\n\r\n34\r\n\r\n");
  EXPECT_EQ(boxes(), Lines{"Can't send command to controller |<msgError> 3: |Local|(Com.SendCommand)"});
  EXPECT_EQ(com.errorList, "");
}

TEST_F(ComTest, ADriverThatCannotBeCalledIsAnUnexpectedError) {
  const std::pair<const char*, const char*> cases[] = {
      {"NoSuchDriver", "Unexpected error|Error 53: "},
      {"TwoExports", "Unexpected error|Error 453: Can't find entry point RDSTAT in TwoExports"}};
  for (const auto& [name, box] : cases) {
    LibraryDriver unusable(name);
    Library other({*engine, unusable, prompts, clock});
    (void)other.Strings();
    other.Com().AppDB = com.AppDB;
    ASSERT_EQ(other.QDB().openCommonDB(), 0);
    EXPECT_GT(other.Com().Send(CmReadStatus, 1, 1), 0);
    const auto shown = boxes();
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_TRUE(shown[0].starts_with(box) && shown[0].ends_with("|(Com.send)")) << shown[0];
    EXPECT_EQ(prompts.busyDepth, 0);
  }
}

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

  // The first station's row cannot be told to the driver, then its ini file cannot be written.
  driver.resultFiles[7] = "XX11";
  calls();
  for (const bool written : {false, true}) {
    if (written) {
      db().execute("update Stations set ModemIniFile = '' where Id = 1");
      std::filesystem::remove("S001.ini");
      std::filesystem::create_directory("S001.ini");
    } else {
      db().execute("update Stations set ModemIniFile = '//far/m.ini' where Id = 1");
    }
    EXPECT_FALSE(com.TestCom());
    EXPECT_EQ(calls(), "0:7,0");
    EXPECT_EQ(query("select count(*) from ComStatus where StationID = 7 and Status = 1"), "2");
    EXPECT_EQ(com.notKnownToAnswer(CTActiveStations, ""), (Places{{1, 3}}));
    const auto shown = boxes();
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_NE(shown[0].find(": Local: "), std::string::npos) << shown[0];
  }
  std::filesystem::remove("S001.ini");

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
  prompts.answers = {Answer::retry, Answer::ignore, Answer::abort};
  EXPECT_TRUE(com.readyToSendToKnown(CTActiveStations, ""));
  EXPECT_NE(boxes().at(1).find("|Local Controller 3  -  Door  -  Gate|"), std::string::npos);
  command("31");
  calls();
  EXPECT_EQ(com.sendToReader(CmSendCommand, "Door"), 0);
  EXPECT_EQ(calls(), "") << "passed over";
  EXPECT_FALSE(com.readyToSendToKnown(CTStation, "Annex"));
  com.inhibitCom = true;
  EXPECT_TRUE(com.readyToSendToKnown(CTStation, "Annex"));
}

TEST_F(ComTest, ADateLineOfNoControllerWritesNowhere) {
  // Made where a date of controller 0 would stand in the statuses, and one of 17 behind the object.
  alignas(StationResult) std::array<unsigned char, sizeof(StationResult) + 16> memory{};
  write("RS001.OUT", "1\r\n    0   0130290224\r\n    17  0130290224");
  const auto* result = new (memory.data()) StationResult(readStationResult(*library, "RS001.OUT"));
  EXPECT_TRUE(result->answered(1));
  EXPECT_TRUE(
      std::all_of(memory.begin() + sizeof(StationResult), memory.end(), [](int b) { return b == 0; }));
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
