#include "platform/datetime.h"

#include <array>
#include <chrono>
#include <cmath>
#include <limits>

#include "platform/clock.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa {
namespace {

namespace chrono = std::chrono;

constexpr int secondsADay = 86400;
constexpr chrono::sys_days dayZero = chrono::year{1899} / 12 / 30;
constexpr int firstDay = (chrono::sys_days(chrono::year{100} / 1 / 1) - dayZero).count();
constexpr int lastDay = (chrono::sys_days(chrono::year{9999} / 12 / 31) - dayZero).count();

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr std::array<std::string_view, 12> monthNames = {"January",   "February", "March",    "April",
                                                         "May",       "June",     "July",     "August",
                                                         "September", "October",  "November", "December"};

/// Reads a date and time from the front of a text, piece by piece.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  [[nodiscard]] bool done() const { return rest_.empty(); }
  [[nodiscard]] char front() const { return rest_.empty() ? '\0' : rest_.front(); }
  bool skip(char c) {
    if (front() != c || done()) return false;
    rest_.remove_prefix(1);
    return true;
  }
  bool skipBlanks() {
    bool any = false;
    while (skip(' ')) any = true;
    return any;
  }
  [[nodiscard]] std::size_t digitsAhead() const {
    std::size_t n = 0;
    while (n < rest_.size() && isDigit(rest_[n])) ++n;
    return n;
  }
  /// Reads a word, which is a month's name or its first three letters; its number, 0 for another word.
  int monthName() {
    std::size_t n = 0;
    while (n < rest_.size() && ((rest_[n] | 0x20) >= 'a' && (rest_[n] | 0x20) <= 'z')) ++n;
    for (std::size_t month = 0; month < monthNames.size(); ++month) {
      const std::string_view name = monthNames.at(month);
      if (n < 3 || !equalNoCase(rest_.substr(0, n), n == 3 ? name.substr(0, 3) : name)) continue;
      rest_.remove_prefix(n);
      return static_cast<int>(month) + 1;
    }
    return 0;
  }
  bool skipWord(std::string_view word) {
    if (!equalNoCase(rest_.substr(0, word.size()), word)) return false;
    rest_.remove_prefix(word.size());
    return true;
  }
  [[nodiscard]] char behindDigits() const {
    const auto n = digitsAhead();
    return n < rest_.size() ? rest_[n] : '\0';
  }
  /// Reads a number with `least` to `most` digits.
  bool number(std::size_t least, std::size_t most, int& out) {
    const auto n = digitsAhead();
    if (n < least || n > most) return false;
    out = 0;
    for (const char c : rest_.substr(0, n)) out = out * 10 + (c - '0');
    rest_.remove_prefix(n);
    return true;
  }

 private:
  std::string_view rest_;
};

/// Reads a year. Without a clock one of two digits is none, and it must not be missing.
bool readYear(Reader& in, const Clock* clock, CivilTime& out) {
  const auto digits = in.digitsAhead();
  if ((digits != 4 && digits != 2) || (digits == 2 && clock == nullptr)) return false;
  in.number(2, 4, out.year);
  if (digits == 2) out.year = fullYear(out.year, out.month, out.day, clock->now());
  return true;
}

/// "6 May 2024", "6-May-24", "May 6, 2024"; without a year it is that of the day.
bool readNamedDate(Reader& in, const Clock* clock, CivilTime& out) {
  const auto part = [&in] {
    const bool blanks = in.skipBlanks();
    return in.skip('-') || in.skip(',') ? (in.skipBlanks(), true) : blanks;
  };
  const bool dayFirst = isDigit(in.front());
  if (dayFirst && !(in.number(1, 2, out.day) && part())) return false;
  out.month = in.monthName();
  if (out.month == 0) return false;
  if (!dayFirst && !(part() && in.number(1, 2, out.day))) return false;
  Reader behind = in;
  const bool parted = part();
  if (isDigit(in.front()) && in.behindDigits() != ':') return parted && readYear(in, clock, out);
  in = behind;  // a time may follow
  if (clock == nullptr) return false;
  out.year = toCivil(clock->now()).year;
  return true;
}

bool readDate(Reader& in, bool monthFirst, const Clock* clock, CivilTime& out) {
  const char sign = in.behindDigits();
  if (sign != '-' && sign != '/') return false;
  if (in.digitsAhead() == 4) {
    return in.number(4, 4, out.year) && in.skip(sign) && in.number(1, 2, out.month) && in.skip(sign) &&
           in.number(1, 2, out.day);
  }
  if (sign == '-' && !monthFirst) return false;
  int& first = monthFirst ? out.month : out.day;
  int& second = monthFirst ? out.day : out.month;
  if (!(in.number(1, 2, first) && in.skip(sign) && in.number(1, 2, second) && in.skip(sign))) return false;
  return readYear(in, clock, out);
}

/// "18:30", "6:30:05 PM", "6 pm"
bool readTime(Reader& in, CivilTime& out) {
  if (!in.number(1, 2, out.hour)) return false;
  const bool minutes = in.skip(':');
  if (minutes && !in.number(2, 2, out.minute)) return false;
  if (minutes && in.skip(':') && !in.number(2, 2, out.second)) return false;
  in.skipBlanks();
  const bool afternoon = in.skipWord("PM");
  if (!afternoon && !in.skipWord("AM")) return minutes;
  if (out.hour < 1 || out.hour > 12) return false;
  out.hour = out.hour % 12 + (afternoon ? 12 : 0);
  return true;
}

/// Whether a time stands at the front: an hour with a colon or a half of the day behind it.
bool isTimeAhead(Reader in) {
  if (in.behindDigits() == ':') return true;
  CivilTime time;
  return isDigit(in.front()) && readTime(in, time);
}

DateTime fromValid(const CivilTime& parts) {
  const chrono::sys_days day = chrono::year{parts.year} / parts.month / parts.day;
  const int days = static_cast<int>((day - dayZero).count());
  const double time = static_cast<double>(parts.hour * 3600 + parts.minute * 60 + parts.second) / secondsADay;
  // Before day 0 the fraction still is the time of day, but it is counted away from zero.
  return DateTime{days < 0 ? days - time : days + time};
}

std::optional<DateTime> parse(std::string_view text, bool monthFirst, const Clock* clock) {
  Reader in(text);
  CivilTime parts;
  in.skipBlanks();
  if (isTimeAhead(in)) {
    if (!readTime(in, parts)) return std::nullopt;
  } else {
    const Reader start = in;
    if (!readDate(in, monthFirst, clock, parts)) {
      in = start;
      parts = CivilTime();
      if (!readNamedDate(in, clock, parts)) return std::nullopt;
    }
    const bool timeMustFollow = in.skip('T');
    const bool timeMayFollow = timeMustFollow || in.skipBlanks();
    if (timeMustFollow || (timeMayFollow && !in.done())) {
      if (!readTime(in, parts)) return std::nullopt;
    }
  }
  in.skipBlanks();
  if (!in.done() || !isValid(parts)) return std::nullopt;
  return fromValid(parts);
}

}  // namespace

std::string_view monthName(int month) {
  return monthNames.at(static_cast<std::size_t>(month - 1));
}

bool isValid(const CivilTime& parts) {
  return parts.year >= 100 && parts.year <= 9999 && parts.month >= 1 && parts.month <= 12 && parts.day >= 1 &&
         chrono::year_month_day(chrono::year{parts.year}, chrono::month(static_cast<unsigned>(parts.month)),
                                chrono::day(static_cast<unsigned>(parts.day)))
             .ok() &&
         parts.hour >= 0 && parts.hour <= 23 && parts.minute >= 0 && parts.minute <= 59 &&
         parts.second >= 0 && parts.second <= 59;
}

DateTime toDateTime(const CivilTime& parts) {
  if (!isValid(parts)) throw Error(err::typeMismatch, "Type mismatch: not a date or time that exists");
  return fromValid(parts);
}

int dayNumber(const CivilTime& parts) {
  return static_cast<int>(toDateTime({.year = parts.year, .month = parts.month, .day = parts.day}).days);
}

CivilTime toCivil(DateTime moment) {
  // NaN fails this test too.
  if (!(moment.days > firstDay - 1 && moment.days < lastDay + 1)) {
    throw Error(err::overflow, "Overflow: the date is outside the years 100 to 9999");
  }
  double whole = 0;
  const double fraction = std::fabs(std::modf(moment.days, &whole));
  int day = static_cast<int>(whole);
  int seconds = static_cast<int>(std::lround(fraction * secondsADay));
  if (seconds == secondsADay) {
    seconds = day == lastDay ? secondsADay - 1 : 0;
    if (day < lastDay) ++day;
  }
  const chrono::year_month_day date{dayZero + chrono::days{day}};
  return {.year = static_cast<int>(date.year()),
          .month = static_cast<int>(static_cast<unsigned>(date.month())),
          .day = static_cast<int>(static_cast<unsigned>(date.day())),
          .hour = seconds / 3600,
          .minute = seconds / 60 % 60,
          .second = seconds % 60};
}

std::optional<DateTime> parseDateTime(std::string_view text, const Clock* clock) {
  return parse(text, false, clock);
}

std::optional<DateTime> parseDateLiteral(std::string_view text, const Clock* clock) {
  return parse(text, true, clock);
}

std::string toShortText(DateTime moment) {
  const CivilTime parts = toCivil(moment);
  const CivilTime dayZeroMidnight;
  const bool midnight = parts.hour == 0 && parts.minute == 0 && parts.second == 0;
  if (parts.year == dayZeroMidnight.year && parts.month == dayZeroMidnight.month &&
      parts.day == dayZeroMidnight.day) {
    return shortTime(moment);
  }
  return midnight ? shortDate(moment) : shortDate(moment) + ' ' + shortTime(moment);
}

std::string shortDate(DateTime moment) {
  return formatDateTime(moment, "dd/mm/yyyy");
}

std::string shortTime(DateTime moment) {
  return formatDateTime(moment, "hh:nn:ss");
}

std::string formatDateTime(DateTime moment, std::string_view pattern) {
  const CivilTime parts = toCivil(moment);
  std::string out;
  bool afterHour = false;
  for (std::size_t i = 0; i < pattern.size();) {
    const char letter = static_cast<char>(pattern[i] | 0x20);
    // So many equal letters are read together: up to three m, two or four y, up to two of the others.
    std::size_t count = 1;
    const std::size_t most = letter == 'y' ? 4 : letter == 'm' ? 3 : 2;
    while (count < most && i + count < pattern.size() && (pattern[i + count] | 0x20) == letter) ++count;
    if (letter == 'y' && count == 3) count = 2;
    const int width = static_cast<int>(count);
    if (letter == 'd') {
      out += zeroPadded(parts.day, width);
    } else if (letter == 'm' && count == 3) {
      out += monthName(parts.month).substr(0, 3);
    } else if (letter == 'm') {
      out += zeroPadded(afterHour ? parts.minute : parts.month, width);
    } else if (letter == 'y' && count > 1) {
      out += zeroPadded(count == 4 ? parts.year : parts.year % 100, width);
    } else if (letter == 'h') {
      out += zeroPadded(parts.hour, width);
    } else if (letter == 'n') {
      out += zeroPadded(parts.minute, width);
    } else if (letter == 's') {
      out += zeroPadded(parts.second, width);
    } else {
      // Characters between the hour and its minutes do not separate them.
      out += pattern[i++];
      continue;
    }
    afterHour = letter == 'h';
    i += count;
  }
  return out;
}

int fullYear(int twoDigits, int month, int day, DateTime today) {
  constexpr int windowEnd = (chrono::sys_days(chrono::year{2030} / 1 / 1) - dayZero).count();
  if (today.days >= windowEnd) return nearestYear(twoDigits, month, day, today);
  return twoDigits < 30 ? 2000 + twoDigits : 1900 + twoDigits;
}

int nearestYear(int twoDigits, int month, int day, DateTime today) {
  const CivilTime parts = toCivil(today);
  const int now = dayNumber(parts);
  const int ofThisCentury = parts.year / 100 * 100 + twoDigits;
  int nearest = ofThisCentury;
  double distance = std::numeric_limits<double>::infinity();
  for (const int year : {ofThisCentury - 100, ofThisCentury, ofThisCentury + 100}) {
    const CivilTime date{.year = year, .month = month, .day = day};
    if (!isValid(date)) continue;
    const double away = std::abs(dayNumber(date) - now);
    if (away >= distance) continue;
    nearest = year;
    distance = away;
  }
  return nearest;
}

}  // namespace voxa
