#include <cstdlib>

#include "simulator/simulator_test.h"

namespace {

class OnTheLine : public SimulatorTest {};

site::Faults silent() {
  site::Faults faults;
  faults.silent = true;
  return faults;
}

site::Faults refusing(std::int16_t code) {
  site::Faults faults;
  faults.refuse = code;
  return faults;
}

TEST_F(OnTheLine, aStationWideDateReadWritesTheResultFile) {
  for (int address = 1; address <= 6; ++address) add(address);
  site_.addController({1, 12});
  site_.addController({1, 14});
  ini("1,2,3,4,5,6,7,12");
  site_.setClock(1, 1, site::toSeconds({{2002, 3, 4}, 5, 6, 30}) - site::toSeconds(site::now()));
  site_.setFaults(1, 2, silent());
  site_.setSpeed(1, 3, 9600);
  site_.setFaults(1, 4, refusing(4));
  site_.setFaults(1, 5, refusing(-7));
  EXPECT_EQ(driverCall("RDDAT", 1, 0), 2);
  EXPECT_EQ(readFile("RS001.OUT"),
            "1234612XXXX1XXXX\r\n"
            "DATE01  0506040302\r\n"
            "DATE06  0000010180\r\n"
            "DATE12  0000010180\r\n");
  EXPECT_FALSE(std::filesystem::exists("RS001.TMP"));
}

TEST_F(OnTheLine, aDateReadOfAllThatAnswerOrOfOneOrOfNone) {
  add(1);
  add(2);
  driverCall("SDDAT", 1, 0);
  EXPECT_EQ(driverCall("RDDAT", 1, 42), 100);
  EXPECT_EQ(driverCall("RDDAT", 1, 95), 100);
  EXPECT_FALSE(std::filesystem::exists("RS001.OUT"));
  const std::int64_t before = site::toSeconds(site::now());
  EXPECT_EQ(driverCall("RDDAT", 1, 0), 100);
  const std::string text = readFile("RS001.OUT");
  ASSERT_EQ(text.size(), 18U + 20U + 20U);
  const site::Moment shown{
      {2000 + std::stoi(text.substr(34, 2)), std::stoi(text.substr(32, 2)), std::stoi(text.substr(30, 2))},
      std::stoi(text.substr(26, 2)),
      std::stoi(text.substr(28, 2))};
  EXPECT_LE(std::llabs(site::toSeconds(shown) - before), 60);
  ini("");
  EXPECT_EQ(driverCall("RDDAT", 1, 0), 100);
  EXPECT_EQ(readFile("RS001.OUT"), "XXXXXXXXXXXXXXXX\r\n");
}

TEST_F(OnTheLine, aBroadcastReachesWhoHearsItAndNobodyAcknowledges) {
  for (int address = 1; address <= 3; ++address) add(address);
  site_.addController({2, 1});
  ini("1");
  site_.setFaults(1, 2, silent());
  site_.setFaults(1, 3, refusing(4));
  EXPECT_EQ(send({"09001200001234"}, 95), 100);
  EXPECT_EQ(look(1).cards.size(), 1U);
  EXPECT_TRUE(look(2).received.empty());
  EXPECT_TRUE(look(3).cards.empty());
  EXPECT_EQ(look(3).received.size(), 1U) << "heard and refused";
  EXPECT_TRUE(site_.snapshot(2, 1).received.empty()) << "another line";
  EXPECT_EQ(driverCall("SDDAT", 1, 95), 100);
  EXPECT_EQ(look(1).clockOffset, 0);
  EXPECT_FALSE(look(2).clockOffset);
}

TEST_F(OnTheLine, toEachTriesAllAndReturnsTheFirstFailure) {
  for (int address = 1; address <= 3; ++address) add(address);
  site_.setFaults(1, 1, refusing(1234));
  site_.setFaults(1, 2, silent());
  EXPECT_EQ(send({"09001200001234"}, 0), 1234);
  EXPECT_EQ(look(3).cards.size(), 1U);
  site_.clearFaults(1, 1);
  site_.clearFaults(1, 2);
  EXPECT_EQ(send({"09001200001234"}, 0), 100);
  EXPECT_EQ(send({"09001200001234"}, 42), 100);
  EXPECT_EQ(look(1).received.size(), 2U);
  EXPECT_EQ(look(2).received.size(), 2U);
}

TEST_F(OnTheLine, whatIsMissingHasItsCode) {
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 16);
  EXPECT_EQ(driverCall("RDDAT", 1, 0), 16);
  EXPECT_EQ(driverCall("CONNECT", 1), 16);
  EXPECT_FALSE(std::filesystem::exists("RS001.OUT"));
  ini("1");
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 1) << "no site at all";
  EXPECT_FALSE(std::filesystem::exists("site")) << "asking creates nothing";
  add(1);
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 100) << "a site that came later";
  EXPECT_EQ(driverCall("SDCMD", 1, 41), 15);
  for (const int address : {1, 16, 40, 42, 57, 94, 96, -1}) EXPECT_EQ(driverCall("RDSTAT", 1, address), 1);
}

TEST_F(OnTheLine, aControllerFailsAfterItsGoodCalls) {
  add(1);
  fill(1);
  site::Faults faults;
  faults.goodCalls = 2;
  site_.setFaults(1, 1, faults);
  EXPECT_EQ(driverCall("RDSTAT", 1, 41), 100);
  EXPECT_EQ(driverCall("SDDAT", 1, 95), 100);
  for (const char* operation : {"RDSTAT", "RDDAT", "SDDAT", "RDMEM", "SDRST", "SDCLR"}) {
    EXPECT_EQ(driverCall(operation, 1, 41), 2) << operation;
  }
  EXPECT_EQ(send({"09001200001234"}), 2);
  EXPECT_TRUE(look().received.empty());
  site_.clearFaults(1, 1);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
}

TEST_F(OnTheLine, aRefusedClearErasesNothing) {
  add(1);
  fill(1);
  site::Faults faults;
  faults.refuseClear = 300;
  site_.setFaults(1, 1, faults);
  EXPECT_EQ(driverCall("RDMEM", 1, 41), 100);
  EXPECT_EQ(driverCall("SDCLR", 1, 41), 300);
  EXPECT_EQ(look().memory.records.size(), 1U);
}

TEST_F(OnTheLine, aControllerLiesAboutACommandFile) {
  add(1);
  site::Faults lie;
  lie.loseAnswer = true;
  lie.times = 1;
  site_.setFaults(1, 1, lie);
  EXPECT_EQ(send({"09001200001234", "1600121"}, 95), 100) << "no answer that could get lost";
  EXPECT_EQ(send({"36001299"}), 2);
  EXPECT_EQ(look().faults, site::Faults()) << "only once";
  lie.loseAnswer = false;
  lie.stopBehind = 1;
  site_.setFaults(1, 1, lie);
  EXPECT_EQ(send({"1700121"}), 100) << "it ends before the break";
  EXPECT_EQ(send({"1600120", "36001298"}), 5);
  EXPECT_EQ(look().faults, site::Faults());
  lie = {};
  lie.forgets = true;
  site_.setFaults(1, 1, lie);
  EXPECT_EQ(send({"1700120"}), 100);
  const site::Card card = look().cards.at(0);
  EXPECT_TRUE(card.credit == 99 && !card.door1 && card.door2);
}

TEST_F(OnTheLine, aSpoiltResultFile) {
  for (int address = 1; address <= 3; ++address) add(address);
  site::Faults faults;
  faults.resultFile = site::ResultFileFault::garbage;
  site_.setFaults(1, 1, faults);
  faults.resultFile = site::ResultFileFault::truncated;
  site_.setFaults(1, 2, faults);
  EXPECT_EQ(driverCall("RDDAT", 1, 0), 100);
  const std::string text = readFile("RS001.OUT");
  EXPECT_EQ(text.substr(0, 18), "~11XXXXXXXXXXXXX\r\n");
  EXPECT_EQ(text.substr(18).find("DATE01"), std::string::npos);
  EXPECT_EQ(text.substr(38), "DATE02  0");
}

TEST_F(OnTheLine, aDialUpLineIsReachedBetweenConnectAndDisconnect) {
  add(1);
  ini("1", 4800, 2);
  writeFile("S001.ini", readFile("S001.ini") + "TEL:0123\r\n");
  const auto unreached = [&] {
    EXPECT_FALSE(site_.connected(1));
    EXPECT_EQ(driverCall("SDDAT", 1, 41), 2);
    EXPECT_EQ(driverCall("RDDAT", 1, 0), 2);
    EXPECT_EQ(readFile("RS001.OUT"), "2XXXXXXXXXXXXXXX\r\n");
    EXPECT_EQ(driverCall("SDDAT", 1, 95), 100);
    EXPECT_FALSE(look().clockOffset);
  };
  driverCall("CONNECT", 2);
  unreached();
  EXPECT_EQ(driverCall("CONNECT", 1), 100);
  EXPECT_EQ(driverCall("RDDAT", 1, 0), 100);
  EXPECT_EQ(driverCall("DISNNECT", 1), 100);
  unreached();
}

}  // namespace
