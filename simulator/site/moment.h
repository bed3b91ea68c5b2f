#pragma once

#include <compare>
#include <cstdint>

namespace site {

struct Date {
  int year = 1980;
  int month = 1;
  int day = 1;
  auto operator<=>(const Date&) const = default;  // NOLINT(modernize-use-nullptr)
};

/// A time on the clock on the wall: no time zone, every day has 24 hours.
struct Moment {
  Date date;
  int hour = 0;
  int minute = 0;
  int second = 0;
  auto operator<=>(const Moment&) const = default;
};

/// The PC's clock.
[[nodiscard]] Moment now();

/// Seconds since 1 January 1970, and back.
[[nodiscard]] std::int64_t toSeconds(const Moment& moment);
[[nodiscard]] Moment fromSeconds(std::int64_t seconds);

/// 1 Monday to 7 Sunday.
[[nodiscard]] int weekday(const Date& date);

/// Whether the calendar has that day.
[[nodiscard]] bool exists(const Date& date);

/// 00 to 29 are 2000 to 2029, 30 to 99 are 1930 to 1999.
[[nodiscard]] int fullYear(int twoDigits);

}  // namespace site
