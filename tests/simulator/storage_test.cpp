#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "simulator/simulator_test.h"

namespace {

namespace fs = std::filesystem;

class Keeping : public SimulatorTest {
 protected:
  // Runs `work` in a process of its own and returns its id. The child leaves by _exit, so it does not clean
  // up.
  template <typename Work>
  static pid_t spawn(Work work) {
    const pid_t child = fork();
    if (child != 0) return child;
    try {
      work();
      _exit(0);
    } catch (...) {
      _exit(1);
    }
  }
  static int wait(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return status;
  }
};

TEST_F(Keeping, controllersAreAddedListedAndRemoved) {
  EXPECT_TRUE(site_.list().empty());
  EXPECT_THROW((void)site_.snapshot(1, 1), site::Failure);
  EXPECT_FALSE(fs::exists("site"));
  site_.addController({2, 3, "VRMD1", 9600, 50});
  site_.addController({1, 16});
  ASSERT_EQ(site_.list().size(), 2U);
  EXPECT_EQ(site_.list()[0].address, 16);
  EXPECT_EQ(site_.list()[1].type, "VRMD1");
  for (const auto& wrong :
       {site::ControllerInfo{1, 16}, site::ControllerInfo{1, 17}, site::ControllerInfo{0, 1},
        site::ControllerInfo{1, 1, ""}, site::ControllerInfo{1, 1, "QSX3", 1200},
        site::ControllerInfo{1, 1, "QSX3", 4800, 0}}) {
    EXPECT_THROW(site_.addController(wrong), site::Failure);
  }
  add(1);
  send({"09001200001234", "37001201", "31010000240024002400"});
  fill(1);
  site_.removeController(1, 1);
  add(1);
  EXPECT_TRUE(look().cards.empty() && look().received.empty() && look().memory.records.empty() &&
              look().dailyPrograms.empty());
}

TEST_F(Keeping, aReplacedControllerHoldsNothingAndKeepsItsFaults) {
  add(1, "QSX3", 2);
  driverCall("SDDAT", 1, 41);
  send({"09001200001234"});
  fill(3);
  site::Faults faults;
  faults.refuseClear = 4;
  site_.setFaults(1, 1, faults);
  site_.replace(1, 1);
  EXPECT_TRUE(look().cards.empty() && look().received.empty() && !look().clockOffset);
  EXPECT_EQ(look().faults, faults);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100) << "a new memory has lost nothing";
  EXPECT_EQ(readFile("J.DAT"), "");
}

TEST_F(Keeping, filesAreForTheirOwnerOnly) {
  add(1);
  send({"09001200001234"});
  EXPECT_EQ(fs::status("site").permissions(), fs::perms::owner_all);
  int files = 0;
  for (const auto& entry : fs::directory_iterator("site")) {
    EXPECT_EQ(entry.status().permissions(), fs::perms::owner_read | fs::perms::owner_write) << entry.path();
    ++files;
  }
  EXPECT_GE(files, 1);
}

TEST_F(Keeping, theDriverFollowsFolderEnvironmentAndReplacedFile) {
  add(1);
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 100);
  fs::create_directory("other");
  fs::current_path("other");
  ini("1");
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 1);
  setenv("TLXP_SITE", "../site", 1);
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 100);
  unsetenv("TLXP_SITE");
  fs::current_path(folder_);
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 100);

  fs::remove_all("site");
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 1);
  add(2);
  EXPECT_EQ(send({"09001200001234"}, 42), 100);
  fs::rename("site", "away");
  add(3);
  EXPECT_EQ(driverCall("RDSTAT", 1, 42), 1);
  EXPECT_EQ(send({"09001200001234"}, 43), 100);
  EXPECT_EQ(look(3).cards.size(), 1U) << "closing the file of before leaves the new one's alone";
  EXPECT_EQ(site::Site("away").snapshot(1, 2).cards.size(), 1U);
}

TEST_F(Keeping, aBrokenSiteFileIsAFailureNotACrash) {
  add(1);
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 100);
  fs::create_directory("broken");
  writeFile("broken/site.db", std::string(8192, 'x'));
  setenv("TLXP_SITE", "broken", 1);
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 14);
  EXPECT_THROW((void)site::Site().list(), site::Failure);
  unsetenv("TLXP_SITE");
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 100);
  fs::create_directory("old");
  site::Storage("old/site.db").run("pragma user_version = 1");  // knows nothing of lost answers
  EXPECT_THROW((void)site::Site("old").list(), site::Failure);
}

TEST_F(Keeping, whatTheDiskRefusesRollsTheCallBack) {
  add(1);
  fill(2);
  fs::create_directories("J.DAT/in the way");
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 14);
  EXPECT_EQ(look().memory.read, 0);
  fs::create_directories("RS001.OUT/in the way");
  EXPECT_EQ(driverCall("RDDAT", 1, 0), 14);
  fs::remove_all("J.DAT");
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
}

TEST_F(Keeping, aProcessKilledAtAnyMomentLeavesWholeCalls) {
  add(1, "QSX3", 50);
  const std::vector<std::string> lines = {"09001200001234", "1600121", "33001200", "36001299"};
  std::size_t received = 0;
  for (int round = 0; round < 12; ++round) {
    const pid_t child = spawn([&] {
      for (;;) {
        send(lines);
        fill(3);
        driverCall("RDMEM", 1, 41);
        driverCall("SDCLR", 1, 41);
      }
    });
    usleep(static_cast<useconds_t>(20000 + round * 3700));
    kill(child, SIGKILL);
    wait(child);
    const site::Snapshot held = site::Site("site").snapshot(1, 1);
    EXPECT_EQ(held.received.size() % lines.size(), 0U);
    EXPECT_LE(held.memory.records.size(), 50U);
    EXPECT_LE(held.memory.read, static_cast<int>(held.memory.records.size()));
    received = held.received.size();
  }
  EXPECT_GT(received, lines.size()) << "the children did some work";
  EXPECT_EQ(send(lines), 100);
  EXPECT_EQ(look().received.size(), received + lines.size());
}

TEST_F(Keeping, twoProcessesShareASiteWithoutLosingAnything) {
  constexpr int calls = 200;
  add(1);
  const pid_t child = spawn([&] {
    site::Site own("site");
    site::Swipe swipe{1, 1, 1, "77"};
    for (int i = 0; i < calls; ++i) own.swipe(swipe);
  });
  writeFile("COMMAND.TXT", "09001200001234\r\n\r\n");
  std::string journal;
  for (int i = 0; i < calls; ++i) {
    ASSERT_EQ(driverCall("SDCMD", 1, 41), 100);
    ASSERT_EQ(driverCall("RDMEM", 1, 41), 100);
    journal += readFile("J.DAT");
    ASSERT_EQ(driverCall("SDCLR", 1, 41), 100);
  }
  EXPECT_EQ(wait(child), 0);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
  journal += readFile("J.DAT");
  EXPECT_EQ(journal.size(), calls * 25U);
  EXPECT_EQ(look().received.size(), static_cast<std::size_t>(calls));
}

}  // namespace
