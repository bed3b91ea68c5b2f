#include <algorithm>
#include <cmath>

#include "engines/sqlite/function_table.h"
#include "platform/clock.h"
#include "platform/datetime.h"
#include "platform/error.h"

namespace voxa {

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

int weekday(const CivilTime& parts) {
  // 1 is Sunday. Day 0 was a Saturday.
  const auto day =
      static_cast<int>(toDateTime({.year = parts.year, .month = parts.month, .day = parts.day}).days);
  return ((day + 6) % 7 + 7) % 7 + 1;
}

/// vx_part(which, moment): 1 year, 2 month, 3 day, 4 hour, 5 minute, 6 second, 7 day of the week.
void part(sqlite3_context* context, sqlite3_value** arguments, int) {
  const CivilTime parts = toCivil(DateTime{sqlite3_value_double(arguments[1])});
  const int all[] = {parts.year,   parts.month,  parts.day,     parts.hour,
                     parts.minute, parts.second, weekday(parts)};
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

constexpr SqlFunction functions[] = {{"vx_date", 1, false, date},
                                     {"vx_time", 1, false, time},
                                     {"vx_part", 2, false, part},
                                     {"vx_dateserial", 3, false, dateSerial}};

}  // namespace

std::span<const SqlFunction> momentFunctions() {
  return functions;
}

}  // namespace voxa
