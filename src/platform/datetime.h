#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace voxa {

class Clock;

/// A date and time of day in parts: year 100 to 9999, month 1 to 12, day 1 to 31, hour 0 to 23.
struct CivilTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;
  friend bool operator==(const CivilTime&, const CivilTime&) = default;
};

/// Whether the parts name a date that exists (29 February only in leap years) and a time of day.
[[nodiscard]] bool isValid(const CivilTime& parts);
/// Parts to moment; `err::typeMismatch` when they are not valid. Equal parts always give the same bits, so
/// two moments of the same minute compare equal.
[[nodiscard]] DateTime toDateTime(const CivilTime& parts);
/// The number of the day that the parts name, without their time. Day 0 is 30 December 1899.
[[nodiscard]] int dayNumber(const CivilTime& parts);
/// Moment to parts, to the nearest second.
[[nodiscard]] CivilTime toCivil(DateTime moment);

/// The regional short form, fixed for this system: dd/mm/yyyy and hh:mm:ss.
/// Accepts a date (d/m/yyyy or d/m/yy, also yyyy-mm-dd and yyyy/mm/dd, 6 May 2024 and May 6, 2024, names in
/// English or their first three letters), a time (h:mm or h:mm:ss, also with AM or PM), or both with blanks
/// or a T between. Empty when the text is none of these. clock: gives the day on which a year of two digits
/// is read (fullYear), and the year of a date with a month's name and none. Without a clock such a text is no
/// date.
[[nodiscard]] std::optional<DateTime> parseDateTime(std::string_view text, const Clock* clock = nullptr);
/// Reads a date literal, which stands between number signs in a statement. Like parseDateTime, but m/d/y or
/// m-d-y: the engine's language has that order in every region.
[[nodiscard]] std::optional<DateTime> parseDateLiteral(std::string_view text, const Clock* clock = nullptr);

/// "dd/mm/yyyy", then " hh:mm:ss" unless the time of day is midnight. A moment on day 0 gives the time alone.
[[nodiscard]] std::string toShortText(DateTime moment);
[[nodiscard]] std::string_view monthName(int month);   ///< of 1 to 12, in English
[[nodiscard]] std::string shortDate(DateTime moment);  ///< "dd/mm/yyyy"
[[nodiscard]] std::string shortTime(DateTime moment);  ///< "hh:mm:ss"

/// Formats by a pattern of d, dd, m, mm, mmm (Jan ... Dec), yy, yyyy, h, hh, n, nn, s, ss. The case of these
/// letters does not matter. m and mm mean minutes when they follow h or hh. Other characters stand for
/// themselves.
[[nodiscard]] std::string formatDateTime(DateTime moment, std::string_view pattern);

/// The full year of a date that is read on `today` and has a year of two digits. Until the end of 2029, 00-29
/// are 2000-2029 and 30-99 are 1930-1999. From 2030 on it is nearestYear.
[[nodiscard]] int fullYear(int twoDigits, int month, int day, DateTime today);
/// Of the years that end in these two digits, the one that brings the date nearest to `today`. The earlier
/// one when two are equally near. 29 February exists in leap years only.
[[nodiscard]] int nearestYear(int twoDigits, int month, int day, DateTime today);

}  // namespace voxa
