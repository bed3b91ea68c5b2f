#include "site/moment.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <limits>

namespace site {

namespace {

constexpr std::int64_t secondsPerDay = 86400;

std::chrono::year_month_day calendar(const Date& date) {
  return std::chrono::year(date.year) / std::chrono::month(static_cast<unsigned>(date.month)) /
         std::chrono::day(static_cast<unsigned>(date.day));
}

}  // namespace

Moment now() {
  const std::time_t time = std::time(nullptr);
  const std::tm* local = std::localtime(&time);
  if (local == nullptr) return {};
  // A leap second counts as the second before it.
  return {{local->tm_year + 1900, local->tm_mon + 1, local->tm_mday},
          local->tm_hour,
          local->tm_min,
          local->tm_sec > 59 ? 59 : local->tm_sec};
}

std::int64_t toSeconds(const Moment& moment) {
  const auto days = std::chrono::sys_days(calendar(moment.date)).time_since_epoch().count();
  return days * secondsPerDay + std::int64_t{moment.hour} * 3600 + std::int64_t{moment.minute} * 60 +
         moment.second;
}

Moment fromSeconds(std::int64_t seconds) {
  const auto point = std::chrono::sys_seconds(std::chrono::seconds(seconds));
  const auto days = std::chrono::floor<std::chrono::days>(point);
  const std::chrono::year_month_day date(days);
  const std::chrono::hh_mm_ss time(point - days);
  return {{static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
           static_cast<int>(static_cast<unsigned>(date.day()))},
          static_cast<int>(time.hours().count()),
          static_cast<int>(time.minutes().count()),
          static_cast<int>(time.seconds().count())};
}

int weekday(const Date& date) {
  return static_cast<int>(std::chrono::weekday(std::chrono::sys_days(calendar(date))).iso_encoding());
}

bool exists(const Date& date) {
  return calendar(date).ok();
}

int nearestYear(int twoDigits, int month, int day, const Date& today) {
  const auto days = [](const Date& date) {
    return std::chrono::sys_days(calendar(date)).time_since_epoch().count();
  };
  const int first = (today.year / 100 - 1) * 100 + twoDigits;
  int nearest = first;
  long distance = std::numeric_limits<long>::max();
  for (const int year : {first, first + 100, first + 200}) {
    const Date date{year, month, day};
    if (!exists(date)) continue;
    const long away = std::labs(static_cast<long>(days(date) - days(today)));
    if (away < distance) nearest = year;
    distance = std::min(distance, away);
  }
  return nearest;
}

}  // namespace site
