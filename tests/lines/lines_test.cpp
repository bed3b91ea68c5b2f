// What is sent over a line, from values to text.

#include <gtest/gtest.h>

#include "lines/badge_format.h"
#include "lines/card.h"
#include "lines/code.h"
#include "lines/daily_program.h"
#include "lines/holiday.h"
#include "lines/line_speed.h"
#include "lines/weekly_program.h"
#include "platform/datetime.h"
#include "platform/error.h"

namespace voxa {
namespace {

using Lines = std::vector<std::string>;

const DateTime today = toDateTime({2026, 12, 24});

/// Number of the error that `work` raises, 0 when it raises none.
template <typename Work>
int errorOf(Work&& work) {
  try {
    (void)work();
    return 0;
  } catch (const Error& error) {
    return error.number();
  }
}

CardRecord wholeCard() {
  CardRecord card;
  card.number = 12;
  card.code = "12AB";
  card.pinCode = 42;
  card.supervisor = true;
  card.validationDate = today;
  card.credit = 7;
  card.parts.set();
  return card;
}

TEST(CardLines, EachPartIsALineOfTheControllersKind) {
  CardRecord card = wholeCard();
  EXPECT_EQ(cardLines(card, {3, true, false}, {4, 99}, "QSX3", today),
            (Lines{"090012    12:;", "33001203", "1600121", "1700120", "1900120042", "490012", "350012241226",
                   "36001207", "37001204", "37001299"}));
  EXPECT_EQ(cardLines(card, {3, false, true}, {}, "VRMD1", today),
            (Lines{"09;01;0012;    12:;", "33;01;0012;03", "16;01;0012;0", "17;01;0012;1", "19;01;0012;0042",
                   "49;01;0012;1", "35;01;0012;241226", "36;01;0012;07"}));
  card.validated = card.supervisor = false;
  card.validationDate.reset();
  card.parts = CardParts("0110100");
  EXPECT_EQ(cardLines(card, {3, true, true}, {}, "QSX3", today),
            (Lines{"1600120", "1700120", "4900120", "350012000000"}));
  EXPECT_EQ(cardLines(card, {3, true, true}, {}, "VRMD1", today).at(2), "49;01;0012;0");
  // A card that is gone, or lost its code, is cleared, and nothing else is told of it.
  card.deleted = true;
  EXPECT_EQ(cardLines(card, {}, {4}, "QSX3", today), Lines{"09001200000000"});
  card.deleted = false;
  card.code = "";
  card.parts.set();
  EXPECT_EQ(cardLines(card, {}, {4}, "VRMD1", today), Lines{"09;01;0012;00000000"});
}

TEST(CardLines, WhatNoLineCanHoldIsRaised) {
  const auto raised = [](const std::function<void(CardRecord&)>& change,
                         const std::vector<std::int16_t>& lifts) {
    CardRecord card = wholeCard();
    change(card);
    return errorOf([&] { return cardLines(card, {1, true, true}, lifts, "QSX3", today); });
  };
  EXPECT_EQ(raised([](CardRecord&) {}, {1}), 0);
  EXPECT_EQ(raised([](CardRecord&) {}, {100}), err::overflow);
  EXPECT_EQ(raised([](CardRecord&) {}, {0}), err::overflow);
  EXPECT_EQ(raised([](CardRecord& card) { card.number = 0; }, {}), err::overflow);
  EXPECT_EQ(raised([](CardRecord& card) { card.number = 10'000; }, {}), err::overflow);
  CardRecord wrongPin = wholeCard();
  wrongPin.pinCode = 10'000;
  try {
    (void)cardLines(wrongPin, {1, true, true}, {1}, "QSX3", today);
    FAIL() << "a personal code of five digits is sent";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), err::overflow);
    EXPECT_EQ(error.description(), "Overflow: the personal code is not one of 0 to 9999");
  }
  EXPECT_EQ(raised([](CardRecord& card) { card.credit = -1; }, {}), err::overflow);
  EXPECT_EQ(raised([](CardRecord& card) { card.credit = 100; }, {}), err::overflow);
  EXPECT_EQ(raised(
                [](CardRecord& card) {
                  card.validationDate = toDateTime({2090, 12, 31});
                },
                {}),
            err::overflow);
  EXPECT_EQ(raised([](CardRecord& card) { card.code = "12G4"; }, {}), err::invalidArgument);
  EXPECT_EQ(raised([](CardRecord& card) { card.code = "123456789"; }, {}), err::invalidArgument);
}

TEST(CodeLines, CodesAsControllersAndPeopleSpellThem) {
  EXPECT_EQ(convertCardCode(":;<=>?4F"), ":;<=>?4?");
  EXPECT_EQ(controllerCode("aFAf"), ":?:?");
  EXPECT_EQ(shownCode(controllerCode("09ABCDEF")), "09ABCDEF");
}

TEST(ProgramLines, ProgramsAndHolidays) {
  const auto times = [](std::initializer_list<const char*> texts) {
    std::vector<DateTime> moments;
    for (const char* text : texts) moments.push_back(*parseDateTime(text));
    return moments;
  };
  EXPECT_EQ(dailyProgramLine(3, times({"00:00", "06:00", "20:00", "23:59"})), "31030000060020002400");
  EXPECT_EQ(
      dailyProgramLine(99, times({"08:00", "12:00", "13:30", "23:58", "20:15", "23:59", "00:00", "23:59"})),
      "319908001200133023582015240000002400");
  EXPECT_EQ(errorOf([&] { return dailyProgramLine(100, {}); }), err::overflow);
  EXPECT_EQ(weeklyProgramLines({"C", 3, {1, 2, 3, 0, 1, 2, 3}, 2}),
            (Lines{"32030102030001020302", "31010000240024002400"}));
  EXPECT_EQ(weeklyProgramLines({"E", 31, {2, 2, 2, 2, 2, 3, 3}, 1}), Lines{"42310202020202030301"})
      << "the whole day on holidays only";
  EXPECT_EQ(errorOf([] { return weeklyProgramLines({"C", 0, {}, 0}); }), err::overflow);
  EXPECT_EQ(errorOf([] { return weeklyProgramLines({"C", 1, {100}, 0}); }), err::overflow);
  EXPECT_EQ(holidayLine({3, toDateTime({2002, 12, 25}), true}, today), "3403251200");
  EXPECT_EQ(holidayLine({20, toDateTime({2027, 1, 2}), false}, today), "3420020127");
  EXPECT_EQ(errorOf([] {
              return holidayLine({1, toDateTime({2100, 12, 25}), false}, toDateTime({2079, 6, 15}));
            }),
            err::overflow)
      << "00 is every year";
  EXPECT_EQ(errorOf([] { return holidayLine({1, toDateTime({2077, 1, 1}), false}, today); }), err::overflow);
  EXPECT_EQ(clearHolidayLine(7), "3407000000");
  EXPECT_EQ(speedLine(4800) + speedLine(38400) + speedLine(300),
            "\x7f"
            "0\x7f"
            "3\x7f");
}

TEST(BadgeFormatLines, TheTechnologyIsOfAVrmd1) {
  const BadgeFormatRecord site{5, 2, 4, 6, false, "1A2F"};
  const auto line = [&](std::int16_t technology) {
    BadgeFormatRecord format = site;
    format.technology = technology;
    return badgeFormatLine(format, 3, true);
  };
  EXPECT_EQ(badgeFormatLine(site, 3, false), "04020406081:2?0000");
  EXPECT_EQ(line(5), "043108020406081:2?0000");
  EXPECT_EQ(line(10), "043600020406081:2?0000");
  EXPECT_EQ(line(11) + line(-1), "04020406081:2?000004020406081:2?0000");
  EXPECT_EQ(badgeFormatLine({0, 99, 12, 0, true, "FedC0a9B"}, 1, false), "0499120004?>=<0:9;");
  EXPECT_EQ(badgeFormatLine({0, 0, 0, 0, false, ""}, 1, false), "040000000800000000");
}

}  // namespace
}  // namespace voxa
