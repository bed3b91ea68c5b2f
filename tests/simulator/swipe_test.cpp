#include "simulator/simulator_test.h"

namespace {

using site::Outcome;

// Monday 11 November 2002 and the days after it.
site::Moment at(int day, int hour, int minute) {
  return {{2002, 11, day}, hour, minute};
}

class Swiping : public SimulatorTest {
 protected:
  Swiping() {
    add(1);
    send({"09001200001234", "1600121", "33001203"});
    // Daily program 1 is all day, 2 has two intervals, 3 only empty ones; the controller does not hold 9.
    send({"31010000240024002400", "31020800120013301730", "31030000000024002400"});
    // Monday has program 2, Tuesday 1, Wednesday never, Thursday 9, Friday 3, the weekend and holidays 1 and
    // never.
    send({"32030201000903010100"});
  }
  site::SwipeResult swipe(const site::Moment& moment, int position = 1, const std::string& code = "1234") {
    site::Swipe swipe{1, 1, position, code};
    swipe.moment = moment;
    return site_.swipe(swipe);
  }
  Outcome outcome(const site::Moment& moment) { return swipe(moment).outcome; }
};

TEST_F(Swiping, theWeekdayPicksTheDailyProgramAndItsIntervalsEndExclusive) {
  EXPECT_EQ(outcome(at(11, 7, 59)), Outcome::refusedByTime);
  EXPECT_EQ(outcome(at(11, 8, 0)), Outcome::granted);
  EXPECT_EQ(outcome(at(11, 11, 59)), Outcome::granted);
  EXPECT_EQ(outcome(at(11, 12, 0)), Outcome::refusedByTime);
  EXPECT_EQ(outcome(at(11, 17, 29)), Outcome::granted);
  EXPECT_EQ(outcome(at(11, 17, 30)), Outcome::refusedByTime);
  EXPECT_EQ(outcome(at(12, 0, 0)), Outcome::granted);
  EXPECT_EQ(outcome(at(12, 23, 59)), Outcome::granted);
  EXPECT_EQ(outcome(at(13, 10, 0)), Outcome::refusedByTime) << "never";
  EXPECT_EQ(outcome(at(14, 10, 0)), Outcome::refusedByTime) << "a daily program the controller does not hold";
  EXPECT_EQ(outcome(at(15, 0, 0)), Outcome::refusedByTime) << "empty intervals";
  EXPECT_EQ(outcome(at(16, 3, 0)), Outcome::granted);
  EXPECT_EQ(outcome(at(17, 3, 0)), Outcome::granted) << "Sunday is day 7";
}

TEST_F(Swiping, aHolidayDatedOrYearlyTakesTheHolidayProgram) {
  send({"3401121102", "3402161100"});
  EXPECT_EQ(outcome(at(12, 10, 0)), Outcome::refusedByTime);
  EXPECT_EQ(outcome({{2003, 11, 12}, 10, 0}), Outcome::refusedByTime) << "a Wednesday, and no holiday";
  EXPECT_EQ(outcome({{2013, 11, 12}, 10, 0}), Outcome::granted) << "a Tuesday of another year";
  EXPECT_EQ(outcome(at(16, 10, 0)), Outcome::refusedByTime);
  EXPECT_EQ(outcome({{2013, 11, 16}, 10, 0}), Outcome::refusedByTime) << "every year";
  send({"3401000000"});
  EXPECT_EQ(outcome(at(12, 10, 0)), Outcome::granted);
}

TEST_F(Swiping, theWeeklyProgramOfTheCardMustBeHeldUnlessItIsAlways) {
  send({"33001207", "42070101010101010101"});
  EXPECT_EQ(outcome(at(12, 10, 0)), Outcome::refusedByTime) << "the other family's program 7";
  send({"33001200"});
  EXPECT_EQ(outcome(at(13, 10, 0)), Outcome::granted);
  send({"09001300005678", "1600131"});
  EXPECT_EQ(swipe(at(12, 10, 0), 1, "5678").outcome, Outcome::refusedByTime) << "was never told a program";
}

TEST_F(Swiping, eachOutcomeAndPositionHasItsRecord) {
  struct Case {
    int position;
    const char* granted;
    const char* time;
    const char* rights;
    const char* unknown;
  };
  send({"1700121", "09001300005678", "33001300"});
  for (const Case& c : {Case{1, "00", "20", "24", "10"}, Case{2, "02", "22", "26", "12"},
                        Case{3, "01", "21", "25", "11"}, Case{4, "03", "23", "27", "13"}}) {
    EXPECT_EQ(swipe(at(12, 9, 5), c.position).record, std::string("01 ") + c.granted + "121102090500001200");
    EXPECT_EQ(swipe(at(13, 9, 5), c.position).record, std::string("01 ") + c.time + "131102090500001200");
    EXPECT_EQ(swipe(at(13, 9, 5), c.position, "5678").record,
              std::string("01 ") + c.rights + "131102090500001300");
    EXPECT_EQ(swipe(at(13, 9, 5), c.position, "9f").record,
              std::string("01 ") + c.unknown + "13110209050000009?");
  }
  EXPECT_EQ(look().memory.records.size(), 16U);
}

TEST_F(Swiping, doorRightsGoByDoor) {
  EXPECT_EQ(swipe(at(12, 9, 0), 3).outcome, Outcome::granted);
  EXPECT_EQ(swipe(at(12, 9, 0), 2).outcome, Outcome::refusedForRights);
  send({"1600120", "1700121"});
  EXPECT_EQ(swipe(at(12, 9, 0), 1).outcome, Outcome::refusedForRights);
  EXPECT_EQ(swipe(at(12, 9, 0), 4).outcome, Outcome::granted);
}

TEST_F(Swiping, validityCreditAndPersonalCode) {
  send({"350012121102", "36001202", "1900120042"});
  EXPECT_EQ(outcome(at(11, 3, 0)), Outcome::refusedByTime);
  site::Swipe keyed{1, 1, 1, "1234"};
  keyed.moment = at(12, 9, 0);
  keyed.pin = "0043";
  EXPECT_EQ(site_.swipe(keyed).outcome, Outcome::refusedForRights);
  EXPECT_EQ(look().cards.at(0).credit, 2) << "a refusal costs nothing";
  keyed.pin = "0042";
  EXPECT_EQ(site_.swipe(keyed).outcome, Outcome::granted);
  EXPECT_EQ(outcome(at(12, 23, 59)), Outcome::granted) << "on the last valid day";
  EXPECT_EQ(look().cards.at(0).credit, 0);
  EXPECT_EQ(outcome(at(12, 9, 0)), Outcome::refusedForRights) << "used up";
  send({"36001200"});
  EXPECT_EQ(outcome(at(12, 9, 0)), Outcome::granted) << "unlimited";
  EXPECT_EQ(outcome(at(16, 9, 0)), Outcome::refusedForRights) << "past the last valid day";
}

TEST_F(Swiping, aCardIsFoundByItsCodeOrByItsNumberHere) {
  site::Swipe swipe{1, 1};
  swipe.cardNumber = 12;
  swipe.moment = at(12, 9, 0);
  EXPECT_EQ(site_.swipe(swipe).cardNumber, 12);
  send({"09001200000000"});
  EXPECT_THROW(site_.swipe(swipe), site::Failure);
  swipe.code = "00001234";
  EXPECT_EQ(site_.swipe(swipe).outcome, Outcome::unknownCard);
  for (const char* wrong : {"123456789", "12G4", " "}) {
    swipe.code = wrong;
    EXPECT_THROW(site_.swipe(swipe), site::Failure) << wrong;
  }
  swipe.code = "1";
  swipe.position = 5;
  EXPECT_THROW(site_.swipe(swipe), site::Failure);
  EXPECT_EQ(look().memory.records.size(), 2U);
}

TEST_F(Swiping, theControllersOwnClockDatesASwipe) {
  site::Swipe swipe{1, 1, 1, "1234"};
  EXPECT_EQ(site_.swipe(swipe).record.substr(5, 10), "0101800000") << "never set";
  site_.setClock(1, 1, site::toSeconds(at(12, 9, 0)) - site::toSeconds(site::now()));
  EXPECT_EQ(site_.swipe(swipe).record.substr(5, 6), "121102");
  driverCall("SDDAT", 1, 41);
  EXPECT_EQ(look().clockOffset, 0);
}

}  // namespace
