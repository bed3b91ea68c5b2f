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
/// that two moments made from the same minute compare equal.
[[nodiscard]] DateTime toDateTime(const CivilTime& parts);
/// Moment to parts, to the nearest second.
[[nodiscard]] CivilTime toCivil(DateTime moment);

/// The regional short form, fixed for this system: dd/mm/yyyy and hh:mm:ss.
/// Accepts a date (d/m/yyyy or d/m/yy; also yyyy-mm-dd), a time (h:mm or h:mm:ss), or both separated by
/// blanks or a T. Empty when the text is none of these. clock: gives the day on which a year of two digits is
/// read (fullYear); without it such a year is none.
[[nodiscard]] std::optional<DateTime> parseDateTime(std::string_view text, const Clock* clock = nullptr);
/// A date literal between number signs in a statement: like parseDateTime, but m/d/y, as the engine's
/// language has it whatever the region.
[[nodiscard]] std::optional<DateTime> parseDateLiteral(std::string_view text, const Clock* clock = nullptr);

/// "dd/mm/yyyy", followed by " hh:mm:ss" when the time of day is not midnight; a moment on day 0 gives the
/// time alone.
[[nodiscard]] std::string toShortText(DateTime moment);
[[nodiscard]] std::string shortDate(DateTime moment);  ///< "dd/mm/yyyy"
[[nodiscard]] std::string shortTime(DateTime moment);  ///< "hh:mm:ss"

/// Formats by a pattern of d, dd, m, mm, mmm (Jan ... Dec), yy, yyyy, h, hh, n, nn, s, ss, letters in any
/// case; m and mm mean minutes when they follow h or hh. Other characters stand for themselves.
[[nodiscard]] std::string formatDateTime(DateTime moment, std::string_view pattern);

/// The year of a date whose year has two digits, when it is read on `today`: until the end of 2029 00-29 are
/// 2000-2029 and 30-99 are 1930-1999; from 2030 on it is nearestYear.
[[nodiscard]] int fullYear(int twoDigits, int month, int day, DateTime today);
/// Of the years that end in these two digits the one that brings the date nearest to `today`; of two that are
/// as near, the earlier one. 29 February is in leap years only.
[[nodiscard]] int nearestYear(int twoDigits, int month, int day, DateTime today);

}  // namespace voxa
