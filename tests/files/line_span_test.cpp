#include "files/line_span.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "comm/station.h"
#include "journal/journal.h"
#include "platform/files.h"
#include "support/com_test.h"

namespace voxa {
namespace {

using Lines = std::vector<std::string>;

/// Stands for another process: the same lock file, opened a second time, has another owner.
class Other {
 public:
  bool take() { return file_ >= 0 && ::flock(file_, LOCK_EX | LOCK_NB) == 0; }
  void sign() const { ASSERT_GT(::pwrite(file_, "4711 caller\n", 12, 0), 0); }
  ~Other() { ::close(file_); }

 private:
  int file_ = ::open("voxa.lck", O_RDWR | O_CREAT, 0600);
};

bool isFree() {
  return Other().take();
}

/// Notes whether a box comes while the lines are held, or while there is a dump that is not in the journal.
struct WatchingPrompts : ScriptedPrompts {
  Answer messageBox(const std::string& prompt, int style, const std::string& title) override {
    good = good && isFree() && !files::exists("J.DAT");
    return ScriptedPrompts::messageBox(prompt, style, title);
  }
  bool good = true;
};

class LineSpanTest : public test::ComTest {
 protected:
  void SetUp() override {
    ComTest::SetUp();
    library->lineLock().patience = std::chrono::milliseconds{20};
  }
};

TEST_F(LineSpanTest, LinesThatAnotherProcessReplacedAreWrittenAnew) {
  com.writeLog = true;
  driver.answer = [&](const auto&) {
    EXPECT_FALSE(isFree());
    return 100;
  };
  command("31");
  write("COMMAND.TXT", "99\r\n\r\n");
  EXPECT_EQ(com.Send(CmSendCommand, 1, 3), 0);
  command("32");
  files::remove("COMMAND.TXT");
  EXPECT_EQ(com.Send(CmSendCommand, 1, 3), 0);
  EXPECT_EQ(driver.sent(), "31\r\n\r\n32\r\n\r\n");
  EXPECT_EQ(textOf("COM.LOG").find("99"), std::string::npos);
  EXPECT_TRUE(isFree());
  // A file that the caller made himself stays as it is.
  library->CommandFile().fopen();
  library->CommandFile().fclose();
  write("COMMAND.TXT", "own");
  library->CommandFile().isFull = true;
  EXPECT_EQ(com.Send(CmSendCommand, 1, 3), 0);
  EXPECT_EQ(driver.calls.back().commandFile, "own");
}

TEST_F(LineSpanTest, WhoHasTheLinesIsNamedAndNothingIsTouched) {
  const std::string busy = "The lines are in use by caller (process 4711): try again when it has finished";
  {
    Other other;
    ASSERT_TRUE(other.take());
    other.sign();
    write("COMMAND.TXT", "his");
    write("J.DAT", "his");
    write("S001.ini", "his");
    write("RS001.OUT", "1");
    command("31");
    for (const bool silent : {false, true}) {
      EXPECT_EQ(com.Send(CmSendCommand, 1, 3, silent), err::permissionDenied);
      EXPECT_EQ(com.popErrorList(), silent ? "" : "\r\n" + busy + " (Local Controller 3  -  Door  -  Gate)");
    }
    EXPECT_TRUE(boxes().empty());
    EXPECT_THROW(library->QDB().Stations().createIniFile(1), Error);
    EXPECT_THROW(library->QDB().Stations().SendSpeed(1, 9600), Error);
    EXPECT_THROW(com.ResetRSOUT(1, 0), Error);
    EXPECT_EQ(library->QDB().Journal().readAuto(), err::permissionDenied);
    EXPECT_FALSE(com.TestCom(CTStation, "Local"));
    EXPECT_EQ(boxes(), Lines{"Unexpected error|Error 70: Local: " + busy + "|(Com.UpdateComStatus)"});
    for (const char* name : {"COMMAND.TXT", "J.DAT", "S001.ini"}) EXPECT_EQ(textOf(name), "his");
    EXPECT_EQ(textOf("RS001.OUT"), "1");
    EXPECT_EQ(calls(), "");
  }
  EXPECT_EQ(com.Send(CmSendCommand, 1, 3), 0);
  EXPECT_EQ(driver.sent(), "31\r\n\r\n");
}

TEST_F(LineSpanTest, SpansLieWithinOneAnotherAndAFolderWithoutALockIsNoObstacle) {
  LockFile whole(folder + "/voxa.lck");
  ASSERT_EQ(whole.lock(std::chrono::milliseconds{0}), LockFile::Outcome::held);
  EXPECT_EQ(com.Send(CmReadStatus, 1, 3), 0);
  EXPECT_FALSE(isFree());
  whole.unlock();
  EXPECT_TRUE(isFree());
  for (const char* none : {"", "\\no\\folder"}) {
    com.Chemin = none;
    EXPECT_EQ(com.Send(CmReadStatus, 1, 3), 0);
  }
}

TEST_F(LineSpanTest, AReadIsOneSpanAndItsMessagesComeBehindIt) {
  WatchingPrompts watching;
  Library own({*engine, driver, watching, clock});
  const Glob client(own);
  client.Initialize(folder + "\\KRV.mdb", folder + "\\S001.ini", folder + "\\COM.LOG", folder);
  driver.resultFile = "XX1";
  for (const bool cutOff : {true, false}) {
    driver.answer = [&](const auto& call) -> std::int16_t {
      EXPECT_FALSE(isFree());
      if (call.command == cmReadMemory) write("J.DAT", "03 10241226180500081200\r\nx\r\n");
      return call.command == (cutOff ? cmReadMemory : CmSendClear) ? 3 : 100;
    };
    EXPECT_EQ(own.QDB().Journal().readTransactions(CTReader, "Door"), 3);
    EXPECT_TRUE(watching.good) << cutOff;
  }
  EXPECT_EQ(watching.boxes.size(), 3U);
}

}  // namespace
}  // namespace voxa
