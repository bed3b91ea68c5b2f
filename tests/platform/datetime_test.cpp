#include "platform/datetime.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "temporary_folder.h"

namespace voxa {
namespace {

TEST(DateTimeTest, DaysThatExist) {
  EXPECT_EQ(toDateTime({.year = 1899, .month = 12, .day = 30}).days, 0);
  EXPECT_EQ(toDateTime({.year = 2000, .month = 2, .day = 29}).days, 36585);
  EXPECT_FALSE(isValid({.year = 1900, .month = 2, .day = 29}));
  EXPECT_FALSE(isValid({.year = 2001, .month = 4, .day = 31}));
  EXPECT_FALSE(isValid({.year = 2001, .month = 4, .day = 1, .hour = 24}));
  EXPECT_EQ(errorOf([] { return toDateTime({.year = 99}); }), err::typeMismatch);
  EXPECT_EQ(errorOf([] { return toCivil(DateTime{1e300}); }), err::overflow);
}

// Before day 0 the fraction counts away from zero: -1.25 is six o'clock on 29 December 1899.
TEST(DateTimeTest, PartsComeBackFromEveryMinute) {
  for (const int year : {100, 1899, 1900, 1999, 2024, 9999}) {
    for (int minute = 0; minute < 1440; minute += 7) {
      const CivilTime parts{.year = year,
                            .month = 12,
                            .day = 29 + minute % 3,
                            .hour = minute / 60,
                            .minute = minute % 60,
                            .second = minute % 60};
      ASSERT_EQ(toCivil(toDateTime(parts)), parts) << year << ' ' << minute;
    }
  }
  EXPECT_EQ(toDateTime({.year = 1899, .month = 12, .day = 29, .hour = 6}).days, -1.25);
  EXPECT_EQ(toCivil(DateTime{-1.999999999}), (CivilTime{.year = 1899, .month = 12, .day = 30}));
  EXPECT_EQ(toCivil(DateTime{36585.999999999}), (CivilTime{.year = 2000, .month = 3, .day = 1}));
  EXPECT_EQ(toCivil(DateTime{2958465.9999999}).second, 59);
}

TEST(DateTimeTest, EqualMinutesHaveEqualBits) {
  const auto bits = [](DateTime moment) { return std::bit_cast<std::uint64_t>(moment.days); };
  const auto made = bits(toDateTime({.year = 2005, .month = 4, .day = 3, .hour = 17, .minute = 43}));
  EXPECT_EQ(bits(*parseDateTime("03/04/2005 17:43:00")), made);
  EXPECT_EQ(bits(*parseDateLiteral("4/3/2005 17:43")), made);
  EXPECT_EQ(bits(toDateTime({.year = 1899, .month = 12, .day = 30})), 0U);
}

TEST(DateTimeTest, ParsesTheRegionalForms) {
  const auto shown = [](const char* text) {
    const auto moment = parseDateTime(text);
    return moment ? toShortText(*moment) : std::string("none");
  };
  EXPECT_EQ(shown(" 2024-02-29T7:05 "), "29/02/2024 07:05:00");
  EXPECT_EQ(shown("7:05:09"), "07:05:09");
  EXPECT_EQ(shown("0:00"), "00:00:00");
  for (const char* none : {"", "1/2", "12/31/1999", "29/02/2023", "1/2/123", "1/2/2000T", "1/2/2000 24:00",
                           "1/2/30", "7:5", "1/2/200007:05", "36526", "1/2/2000 7:05x", "1-2-2000"}) {
    EXPECT_EQ(shown(none), "none") << none;
  }
  EXPECT_EQ(shortDate(*parseDateLiteral("12/31/1999")), "31/12/1999");
}

TEST(DateTimeTest, AYearOfTwoDigitsIsOfTheCenturyThatItsReaderMeans) {
  const struct {
    CivilTime today;
    const char* text;
    const char* date;
  } cases[] = {{{2029, 12, 31}, "1/2/29", "01/02/2029"}, {{2029, 12, 31}, "1/2/30", "01/02/1930"},
               {{2030, 1, 1}, "1/2/30", "01/02/2030"},   {{2031, 6, 15}, "13/6/81", "13/06/2081"},
               {{2031, 6, 15}, "16/6/81", "16/06/1981"}, {{2079, 6, 15}, "1/2/29", "01/02/2129"},
               {{2079, 6, 15}, "1/8/29", "01/08/2029"},  {{2079, 6, 15}, "1/2/30", "01/02/2030"},
               {{2079, 6, 15}, "1/1/00", "01/01/2100"},  {{2079, 6, 15}, "29/2/00", "29/02/2000"},
               {{2079, 6, 15}, "1/2/1930", "01/02/1930"}};
  for (const auto& c : cases) {
    const FixedClock clock(c.today);
    const auto moment = parseDateTime(c.text, &clock);
    EXPECT_EQ(moment ? shortDate(*moment) : "none", c.date) << c.today.year << ' ' << c.text;
  }
}

TEST(DateTimeTest, Formats) {
  const DateTime moment = toDateTime({2005, 4, 3, 7, 8, 9});
  EXPECT_EQ(formatDateTime(moment, "d/m/yy h:m:s"), "3/4/05 7:8:9");
  EXPECT_EQ(formatDateTime(moment, "DD.MMM.YYYY HH-MM"), "03.Apr.2005 07-08");
  EXPECT_EQ(formatDateTime(moment, "hh:nn mm"), "07:08 04");
  EXPECT_EQ(formatDateTime(moment, "yyyymmddhhnnss"), "20050403070809");
}

}  // namespace
}  // namespace voxa
