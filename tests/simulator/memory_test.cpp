#include "simulator/simulator_test.h"

namespace {

std::string line(int address, int code) {
  return "0" + std::to_string(address) + " 1015110210200000000" + std::to_string(code) + "\r\n";
}

class MemoryReading : public SimulatorTest {};

TEST_F(MemoryReading, aReadGoesOnWhereTheLastEndedAndAResetStartsAgain) {
  add(1);
  fill(2);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
  EXPECT_EQ(readFile("J.DAT"), line(1, 1) + line(1, 2));
  fill(1);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
  EXPECT_EQ(readFile("J.DAT"), line(1, 1)) << "made anew, the new record only";
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
  EXPECT_TRUE(std::filesystem::exists("J.DAT"));
  EXPECT_EQ(readFile("J.DAT"), "");
  EXPECT_EQ(driverCall("SDRST", 1, 41), 100);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
  EXPECT_EQ(readFile("J.DAT"), line(1, 1) + line(1, 2) + line(1, 1));
}

TEST_F(MemoryReading, aClearErasesOnlyWhatWasReadAndKeepsTheConfiguration) {
  add(1);
  send({"09001200001234"});
  fill(2);
  EXPECT_EQ(driverCall("SDCLR", 1, 41), 100);
  EXPECT_EQ(look().memory.records.size(), 2U) << "nothing was read yet";
  driverCall("RDMEM", 1, 41);
  fill(1);
  EXPECT_EQ(driverCall("SDCLR", 1, 41), 100);
  EXPECT_EQ(look().memory.records.size(), 1U);
  EXPECT_EQ(look().memory.read, 0);
  EXPECT_EQ(look().cards.size(), 1U);
  driverCall("SDRST", 1, 41);
  driverCall("RDMEM", 1, 41);
  EXPECT_EQ(readFile("J.DAT"), line(1, 1));
}

TEST_F(MemoryReading, aFullMemoryLosesItsOldestAndSaysSoOnce) {
  add(1, "QSX3", 3);
  fill(3);
  EXPECT_EQ(look().memory.overflows, 0);
  fill(2);
  EXPECT_EQ(look().memory.overflows, 2);
  writeFile("J.DAT", "left over");
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 101);
  EXPECT_FALSE(std::filesystem::exists("J.DAT"));
  EXPECT_EQ(look().memory.read, 0);
  EXPECT_EQ(driverCall("SDRST", 1, 41), 100);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
  EXPECT_EQ(readFile("J.DAT"), line(1, 3) + line(1, 1) + line(1, 2));
  fill(1);
  EXPECT_EQ(driverCall("SDRST", 1, 41), 100);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100) << "the reset comes to know of the loss";
  EXPECT_EQ(driverCall("SDCLR", 1, 41), 100);
  fill(3);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100) << "an emptied memory has room again";
}

TEST_F(MemoryReading, allControllersGoIntoOneFileInOrder) {
  add(1);
  add(2);
  add(3);
  fill(1, 3);
  fill(2, 1);
  site::Faults silent;
  silent.silent = true;
  site_.setFaults(1, 2, silent);
  EXPECT_EQ(driverCall("RDMEM", 1, 0), 2);
  EXPECT_EQ(readFile("J.DAT"), line(1, 1) + line(1, 2) + line(3, 1));
  EXPECT_EQ(driverCall("RDMEM", 1, 42), 2);
  EXPECT_FALSE(std::filesystem::exists("J.DAT")) << "nobody could be read";
}

TEST_F(MemoryReading, aReadCutOffKeepsWhatCameAndTheRestForTheNext) {
  add(1);
  add(2);
  fill(3, 1);
  fill(1, 2);
  site::Faults cut;
  cut.cutAfter = 1;
  cut.cutHalfLine = cut.cutOnce = true;
  site_.setFaults(1, 1, cut);
  EXPECT_EQ(driverCall("RDMEM", 1, 0), 5);
  EXPECT_EQ(readFile("J.DAT"), line(1, 1) + line(1, 2).substr(0, 11) + "\r\n" + line(2, 1));
  EXPECT_EQ(look().memory.read, 1);
  EXPECT_EQ(look().faults, site::Faults());
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
  EXPECT_EQ(readFile("J.DAT"), line(1, 2) + line(1, 3));

  cut = {};
  cut.cutAfter = 2;
  site_.setFaults(1, 1, cut);
  for (int i = 0; i < 2; ++i) {
    driverCall("SDRST", 1, 41);
    EXPECT_EQ(driverCall("RDMEM", 1, 41), 5) << "until it is cleared";
    EXPECT_EQ(readFile("J.DAT"), line(1, 1) + line(1, 2));
  }
  EXPECT_EQ(driverCall("SDCLR", 1, 41), 100);
  EXPECT_EQ(look().memory.records.size(), 1U);
}

}  // namespace
