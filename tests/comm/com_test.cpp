#include "support/com_test.h"

#include <filesystem>

namespace voxa {
namespace {

using test::ComTest;
using Lines = std::vector<std::string>;

TEST_F(ComTest, ErrorLinesGatherUntilTheyAreRead) {
  const std::string readers = "|Local Controller 3  -  Door  -  Gate";
  command("31");
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

  // The date read that follows a memory read starts without the old result file.
  write("RS001.OUT", "2");
  answerAll(101);
  EXPECT_EQ(com.Send(cmReadMemory, 1), 101);
  EXPECT_FALSE(std::filesystem::exists("RS001.OUT"));
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

}  // namespace
}  // namespace voxa
