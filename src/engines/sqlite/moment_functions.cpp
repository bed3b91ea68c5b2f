#include <algorithm>
#include <cmath>

#include "engines/language/format.h"
#include "engines/sqlite/function_table.h"
#include "platform/clock.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa {

dialect::Weeks weeksOf(sqlite3_value* firstDay, sqlite3_value* firstWeek) {
  const std::int64_t day = countOf(firstDay, 0);
  const std::int64_t week = countOf(firstWeek, 0);
  if (day > 7 || week > 3)
    throw Error(err::invalidArgument,
                "Invalid argument: a week begins with day 1 to 7, the first of a year is 1, 2 or 3");
  return {static_cast<int>(std::max<std::int64_t>(day, 1)),
          static_cast<int>(std::max<std::int64_t>(week, 1))};
}

namespace {

/// The date that a text in regional form names; Null for any other text.
void date(sqlite3_context* context, sqlite3_value** arguments, int) {
  if (sqlite3_value_type(arguments[0]) != SQLITE_TEXT) {
    sqlite3_result_value(context, arguments[0]);
    return;
  }
  const auto moment = parseDateTime(textOf(arguments[0]), clockOf(context));
  if (moment) sqlite3_result_double(context, moment->days);
}

/// The time of day alone.
void time(sqlite3_context* context, sqlite3_value** arguments, int) {
  const CivilTime parts = toCivil(DateTime{sqlite3_value_double(arguments[0])});
  const CivilTime time{.hour = parts.hour, .minute = parts.minute, .second = parts.second};
  sqlite3_result_double(context, toDateTime(time).days);
}

/// vx_part(which, moment): 1 year, 2 month, 3 day, 4 hour, 5 minute, 6 second, 7 day of the week.
void part(sqlite3_context* context, sqlite3_value** arguments, int) {
  const DateTime moment{sqlite3_value_double(arguments[1])};
  const CivilTime parts = toCivil(moment);
  const int all[] = {parts.year,
                     parts.month,
                     parts.day,
                     parts.hour,
                     parts.minute,
                     parts.second,
                     dialect::dayOfWeek(moment, {})};
  sqlite3_result_int(context, all[sqlite3_value_int(arguments[0]) - 1]);
}

/// A date from year, month and day. Month and day may lie beyond their range: month 13 is January of the next
/// year, day 0 the last day of the month before.
void dateSerial(sqlite3_context* context, sqlite3_value** arguments, int) {
  const auto whole = [&](int i) { return Value(sqlite3_value_double(arguments[i])).toInt16(); };
  int year = whole(0);
  if (year >= 0 && year < 100) {
    year = fullYear(year, std::clamp<int>(whole(1), 1, 12), std::clamp<int>(whole(2), 1, 28),
                    clockOf(context)->now());
  }
  const int months = year * 12 + whole(1) - 1;
  if (months < 0) throw Error(err::overflow, "Overflow: the date is outside the years 100 to 9999");
  const CivilTime first{.year = months / 12, .month = months % 12 + 1, .day = 1};
  const DateTime moment{toDateTime(first).days + whole(2) - 1};
  (void)toCivil(moment);  // raises for a day out of range
  sqlite3_result_double(context, moment.days);
}

/// The parts of a moment that DateAdd, DateDiff and DatePart name.
enum class Interval { year, quarter, month, dayOfYear, day, weekday, week, hour, minute, second };

Interval intervalOf(std::string_view name) {
  constexpr std::pair<std::string_view, Interval> names[] = {
      {"yyyy", Interval::year}, {"q", Interval::quarter}, {"m", Interval::month}, {"y", Interval::dayOfYear},
      {"d", Interval::day},     {"w", Interval::weekday}, {"ww", Interval::week}, {"h", Interval::hour},
      {"n", Interval::minute},  {"s", Interval::second}};
  for (const auto& [text, interval] : names) {
    if (equalNoCase(name, text)) return interval;
  }
  throw Error(err::invalidArgument, "Invalid argument: an interval is yyyy, q, m, y, d, w, ww, h, n or s");
}

DateTime momentOf(sqlite3_value* value) {
  return DateTime{sqlite3_value_double(value)};
}
/// The whole part of a quotient, rounded down: times before day 0 count, too.
std::int64_t dividedDown(std::int64_t number, std::int64_t by) {
  return number >= 0 ? number / by : -((-number + by - 1) / by);
}
constexpr std::int64_t secondsOfDay = 86400;
std::int64_t secondsOf(const CivilTime& parts) {
  return dayNumber(parts) * secondsOfDay + parts.hour * 3600 + parts.minute * 60 + parts.second;
}

/// The same day so many months on, or the last one of its month.
DateTime monthsOn(CivilTime parts, std::int64_t number) {
  const std::int64_t months = parts.year * 12LL + parts.month - 1 + number;
  if (months < 100 * 12 || months >= 10'000 * 12)
    throw Error(err::overflow, "Overflow: the date is outside the years 100 to 9999");
  parts.year = static_cast<int>(months / 12);
  parts.month = static_cast<int>(months % 12) + 1;
  while (!isValid(parts)) --parts.day;
  return toDateTime(parts);
}

/// vx_dateadd(interval, number, moment)
void dateAdd(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::int64_t number = Value(sqlite3_value_double(arguments[1])).toInt32();
  const DateTime moment = momentOf(arguments[2]);
  const CivilTime parts = toCivil(moment);
  const auto secondsOn = [&](std::int64_t seconds) {
    const std::int64_t at = secondsOf(parts) + seconds;
    const std::int64_t day = dividedDown(at, secondsOfDay);
    CivilTime there = toCivil(DateTime{static_cast<double>(day)});
    const auto rest = static_cast<int>(at - day * secondsOfDay);
    there.hour = rest / 3600;
    there.minute = rest / 60 % 60;
    there.second = rest % 60;
    return toDateTime(there);
  };
  DateTime result;
  switch (intervalOf(textOf(arguments[0]))) {
    case Interval::year:
      result = monthsOn(parts, 12 * number);
      break;
    case Interval::quarter:
      result = monthsOn(parts, 3 * number);
      break;
    case Interval::month:
      result = monthsOn(parts, number);
      break;
    case Interval::week:
      result = secondsOn(7 * secondsOfDay * number);
      break;
    case Interval::hour:
      result = secondsOn(3600 * number);
      break;
    case Interval::minute:
      result = secondsOn(60 * number);
      break;
    case Interval::second:
      result = secondsOn(number);
      break;
    default:
      result = secondsOn(secondsOfDay * number);
  }
  sqlite3_result_double(context, result.days);
}

/// vx_datediff(interval, from, to, firstDay, firstWeek): how many beginnings of such an interval lie between.
void dateDiff(sqlite3_context* context, sqlite3_value** arguments, int) {
  const CivilTime from = toCivil(momentOf(arguments[1]));
  const CivilTime to = toCivil(momentOf(arguments[2]));
  const dialect::Weeks weeks = weeksOf(arguments[3], arguments[4]);
  const std::int64_t days = dayNumber(to) - dayNumber(from);
  const auto units = [&](std::int64_t seconds) {
    return dividedDown(secondsOf(to), seconds) - dividedDown(secondsOf(from), seconds);
  };
  std::int64_t count = 0;
  switch (intervalOf(textOf(arguments[0]))) {
    case Interval::year:
      count = to.year - from.year;
      break;
    case Interval::quarter:
      count = (to.year - from.year) * 4 + (to.month - 1) / 3 - (from.month - 1) / 3;
      break;
    case Interval::month:
      count = (to.year - from.year) * 12 + to.month - from.month;
      break;
    case Interval::weekday:  // whole weeks
      count = days / 7;
      break;
    case Interval::week:
      count =
          (days + dayOfWeek(momentOf(arguments[1]), weeks) - dayOfWeek(momentOf(arguments[2]), weeks)) / 7;
      break;
    case Interval::hour:
      count = units(3600);
      break;
    case Interval::minute:
      count = units(60);
      break;
    case Interval::second:
      count = units(1);
      break;
    default:
      count = days;
  }
  sqlite3_result_int64(context, count);
}

/// vx_datepart(interval, moment, firstDay, firstWeek)
void datePart(sqlite3_context* context, sqlite3_value** arguments, int) {
  const DateTime moment = momentOf(arguments[1]);
  const CivilTime parts = toCivil(moment);
  const dialect::Weeks weeks = weeksOf(arguments[2], arguments[3]);
  const auto part = [&] {
    switch (intervalOf(textOf(arguments[0]))) {
      case Interval::year:
        return parts.year;
      case Interval::quarter:
        return (parts.month + 2) / 3;
      case Interval::month:
        return parts.month;
      case Interval::dayOfYear:
        return dialect::dayOfYear(parts);
      case Interval::weekday:
        return dayOfWeek(moment, weeks);
      case Interval::week:
        return weekOfYear(moment, weeks);
      case Interval::hour:
        return parts.hour;
      case Interval::minute:
        return parts.minute;
      case Interval::second:
        return parts.second;
      default:
        return parts.day;
    }
  };
  sqlite3_result_int(context, part());
}

void isDate(sqlite3_context* context, sqlite3_value** arguments, int) {
  const bool text = sqlite3_value_type(arguments[0]) == SQLITE_TEXT;
  sqlite3_result_int(context, text && parseDateTime(textOf(arguments[0]), clockOf(context)) ? 1 : 0);
}

/// A number that names something, from 1 on.
int numberOf(sqlite3_value* value, int most) {
  const std::int64_t number = countOf(value, 1);
  if (number > most)
    throw Error(err::invalidArgument, "Invalid argument: there are months 1 to 12, and days 1 to 7");
  return static_cast<int>(number);
}

/// vx_monthname(month, short)
void nameOfMonth(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string_view name = monthName(numberOf(arguments[0], 12));
  returnText(context, name.substr(0, sqlite3_value_int(arguments[1]) != 0 ? 3 : name.size()));
}

/// vx_weekdayname(day, short, firstDay)
void nameOfWeekday(sqlite3_context* context, sqlite3_value** arguments, int) {
  const int day =
      numberOf(arguments[0], 7) + (sqlite3_value_int(arguments[2]) == 0 ? 1 : numberOf(arguments[2], 7)) - 1;
  // Day 1 of the calendar was a Sunday.
  const DateTime moment{static_cast<double>((day - 1) % 7 + 1)};
  returnText(context, dialect::format(moment, sqlite3_value_int(arguments[1]) != 0 ? "ddd" : "dddd", {},
                                      clockOf(context)));
}

constexpr SqlFunction functions[] = {{"vx_date", 1, false, date},
                                     {"vx_time", 1, false, time},
                                     {"vx_part", 2, false, part},
                                     {"vx_dateserial", 3, false, dateSerial},
                                     {"vx_dateadd", 3, false, dateAdd},
                                     {"vx_datediff", 5, false, dateDiff},
                                     {"vx_monthname", 2, false, nameOfMonth},
                                     {"vx_weekdayname", 3, false, nameOfWeekday},
                                     {"vx_datepart", 4, false, datePart},
                                     {"vx_isdate", 1, true, isDate}};

}  // namespace

std::span<const SqlFunction> momentFunctions() {
  return functions;
}

}  // namespace voxa
