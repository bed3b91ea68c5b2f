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

/// A time as a clock on the wall shows it: without a time zone, and every day has 24 hours.
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

/// Whether the calendar has such a day.
[[nodiscard]] bool exists(const Date& date);

/// Of the years that end in these two digits, the one that brings the day nearest to `today`. The earlier one
/// when two are equally near.
[[nodiscard]] int nearestYear(int twoDigits, int month, int day, const Date& today);

}  // namespace site
