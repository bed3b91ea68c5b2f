#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/datetime.h"
#include "platform/value.h"

namespace voxa {
class Clock;
}

namespace voxa::dialect {

/// How weeks are counted. firstDay: 1 Sunday to 7 Saturday. firstWeek: 1 the week of 1 January, 2 the first
/// with four days of the year, 3 the first whole one.
struct Weeks {
  int firstDay = 1;
  int firstWeek = 1;
};

/// Format(): a value by a named format ("Short Date") or a pattern. A pattern with 0 or # is one for numbers,
/// one with letters of dates (d, m, y, h ...) for moments, one with @ & < > for texts. A text that does not
/// read as what the pattern is for stays as it is. The point is the decimal sign, the comma parts thousands,
/// and there is no sign of a currency. clock: see parseDateTime.
[[nodiscard]] std::string format(const Value& value, std::string_view pattern, const Weeks& weeks,
                                 const Clock* clock);

/// One number by one section of a pattern, 0 # . , % E+ and literals. A negative number has its sign in
/// front.
[[nodiscard]] std::string formatNumber(double number, std::string_view section);

/// A moment by a pattern of c, d to dddddd, w, ww, m to mmmm, q, y, yy, yyyy, h, n, s, ttttt, AM/PM and
/// literals. m after an hour means minutes.
[[nodiscard]] std::string formatMoment(DateTime moment, std::string_view pattern, const Weeks& weeks);

/// Day of the year, 1 to 366.
[[nodiscard]] int dayOfYear(const CivilTime& parts);
/// Day of the week, 1 to 7, counted from weeks.firstDay.
[[nodiscard]] int dayOfWeek(DateTime moment, const Weeks& weeks);
/// Week of the year, 1 to 54.
[[nodiscard]] int weekOfYear(DateTime moment, const Weeks& weeks);

/// A character of a pattern. A literal stands for itself: it was quoted, or followed a backslash.
struct PatternCharacter {
  std::string_view text;  ///< one UTF-8 character
  bool literal = false;

  /// Whether it is this sign, and no literal. In lower-case ASCII letters.
  [[nodiscard]] bool is(char sign) const;
};
/// Takes quotes and backslashes off.
[[nodiscard]] std::vector<PatternCharacter> charactersOf(std::string_view pattern);

}  // namespace voxa::dialect
