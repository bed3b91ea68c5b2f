#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "controllers/holdings.h"
#include "platform/value.h"

namespace voxa {

/// What can be said for sure. The lowest of several is what holds for all of them together, the highest what
/// holds for any.
enum class Sure : std::uint8_t { no, unsaid, yes };
[[nodiscard]] constexpr Sure sure(bool is) {
  return is ? Sure::yes : Sure::no;
}

/// What `judge` says of every value that a thing may have: nothing when they differ, or when it may have any.
template <typename Judge>
[[nodiscard]] Sure ofAll(const Possible& thing, const Judge& judge) {
  const auto values = thing.values();
  if (!values) return Sure::unsaid;
  const Sure first = judge(values->front());
  const bool same = std::all_of(values->begin() + 1, values->end(),
                                [&](const std::string& value) { return judge(value) == first; });
  return same ? first : Sure::unsaid;
}

/// Minutes of the day from which and up to which a door opens, the last one not included.
using Hours = std::vector<std::pair<int, int>>;
/// Those of a daily program's value (SentLine), without empty intervals.
[[nodiscard]] Hours hoursOf(std::string_view dailyProgram);

/// How a controller decides at a moment, by what it is known to hold. The same rules tell what the rows of an
/// installation mean, once they stand as holdings.
class DoorDecision {
 public:
  /// today: the day by which controllers read years of two digits.
  DoorDecision(DateTime at, DateTime today);

  /// Whether a day that the rows name is that day, or in `eachYear` its day and month.
  [[nodiscard]] bool isOn(DateTime date, bool eachYear) const;
  [[nodiscard]] bool isPast(DateTime lastDay) const;
  /// Whether the programs of holidays are in force.
  [[nodiscard]] Sure isHoliday(const Holdings& held) const;
  /// The number of the daily program that is in force, by a weekly program's value.
  [[nodiscard]] int dailyProgram(std::string_view weeklyProgram, bool holiday) const;
  /// Whether one of the days of a weekly program's value has hours.
  [[nodiscard]] static bool opensEver(const Holdings& held, std::string_view weeklyProgram);
  /// Whether it is within the hours of the weekly program of that number, two digits.
  [[nodiscard]] Sure inHours(const Holdings& held, const Possible& weeklyProgram, Sure holiday) const;
  /// Whether a card that is presented opens a door. code: in the form of SentLine; "" when it is not known. A
  /// card with a credit may have used it up, which the controller alone knows.
  [[nodiscard]] Sure opens(const Holdings& held, const CardState& card, const std::string& code,
                           CardField door) const;

 private:
  [[nodiscard]] Sure inDaily(const Holdings& held, int program) const;
  [[nodiscard]] Sure isHolidayDate(std::string_view date) const;
  [[nodiscard]] Sure isNotPast(std::string_view lastDay) const;

  double day_;  // as DateTime counts them
  DateTime today_;
  std::string dayMonth_;     // as in the values of days
  std::size_t weekday_ = 0;  // Monday is 0
  int minute_ = 0;
};

/// Whether a part of a card has that value, or both are none: it takes away what another value would give.
[[nodiscard]] Sure hasPart(const CardState& card, CardField field, const std::string& wanted);

}  // namespace voxa
