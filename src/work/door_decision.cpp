#include "work/door_decision.h"

#include <charconv>
#include <cmath>
#include <optional>

#include "platform/datetime.h"

namespace voxa {

namespace {

constexpr std::string_view alwaysProgram = "00";  // weekly
constexpr int neverProgram = 0;                   // daily
constexpr std::string_view everyYear = "00";
constexpr std::size_t daysOfWeek = 7;
constexpr std::size_t dayWidth = 6;  // ddmmyy
constexpr std::size_t timeWidth = 4;

// -1 for what is no number: of a value that may have been sent in a wrong form.
int numberOf(std::string_view digits) {
  int number = -1;
  const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return end == digits.data() + digits.size() && failure == std::errc() ? number : -1;
}

int minuteOf(std::string_view hhmm) {
  return numberOf(hhmm.substr(0, 2)) * 60 + numberOf(hhmm.substr(2));
}

// Of "ddmmyy", as a controller reads it today; none when it is no date.
std::optional<DateTime> dateOf(std::string_view value, DateTime today) {
  if (value.size() != dayWidth) return std::nullopt;
  const int year = numberOf(value.substr(4));
  CivilTime date{0, numberOf(value.substr(2, 2)), numberOf(value.substr(0, 2)), 0, 0, 0};
  date.year = nearestYear(year, date.month, date.day, today);
  if (year < 0 || !isValid(date)) return std::nullopt;
  return toDateTime(date);
}

}  // namespace

Hours hoursOf(std::string_view dailyProgram) {
  Hours hours;
  for (; dailyProgram.size() >= 2 * timeWidth; dailyProgram.remove_prefix(2 * timeWidth)) {
    const int start = minuteOf(dailyProgram.substr(0, timeWidth));
    const int end = minuteOf(dailyProgram.substr(timeWidth, timeWidth));
    if (start < end) hours.emplace_back(start, end);
  }
  return hours;
}

DoorDecision::DoorDecision(DateTime at, DateTime today)
    : today_(today), dayMonth_(formatDateTime(at, "ddmm")) {
  const CivilTime time = toCivil(at);
  minute_ = time.hour * 60 + time.minute;
  day_ = toDateTime({time.year, time.month, time.day, 0, 0, 0}).days;
  constexpr int aMonday = 2;
  const double weeks = std::floor((day_ - aMonday) / daysOfWeek);
  weekday_ = static_cast<std::size_t>(day_ - aMonday - weeks * daysOfWeek);
}

bool DoorDecision::isOn(DateTime date, bool eachYear) const {
  return eachYear ? formatDateTime(date, "ddmm") == dayMonth_ : std::floor(date.days) == day_;
}

bool DoorDecision::isPast(DateTime lastDay) const {
  return std::floor(lastDay.days) < day_;
}

Sure DoorDecision::isHoliday(const Holdings& held) const {
  Sure holiday = held.unknownOthers.contains(ThingKind::holiday) ? Sure::unsaid : Sure::no;
  for (auto thing = held.things.lower_bound({ThingKind::holiday, 0});
       thing != held.things.end() && thing->first.first == ThingKind::holiday; ++thing) {
    const auto judge = [&](const std::string& date) { return isHolidayDate(date); };
    holiday = std::max(holiday, ofAll(thing->second, judge));
  }
  return holiday;
}

Sure DoorDecision::isHolidayDate(std::string_view date) const {
  if (!date.starts_with(dayMonth_)) return Sure::no;
  if (date.ends_with(everyYear)) return Sure::yes;
  const auto day = dateOf(date, today_);
  return day ? sure(isOn(*day, false)) : Sure::unsaid;
}

int DoorDecision::dailyProgram(std::string_view weeklyProgram, bool holiday) const {
  const std::size_t place = 2 * (holiday ? daysOfWeek : weekday_);
  return place < weeklyProgram.size() ? numberOf(weeklyProgram.substr(place, 2)) : -1;
}

bool DoorDecision::opensEver(const Holdings& held, std::string_view weeklyProgram) {
  for (; weeklyProgram.size() >= 2; weeklyProgram.remove_prefix(2)) {
    const int program = numberOf(weeklyProgram.substr(0, 2));
    if (program != neverProgram && !hoursOf(held.thing(ThingKind::daily, program).last()).empty())
      return true;
  }
  return false;
}

Sure DoorDecision::inDaily(const Holdings& held, int program) const {
  if (program == neverProgram) return Sure::no;
  return ofAll(held.thing(ThingKind::daily, program), [&](const std::string& value) {
    const Hours hours = hoursOf(value);
    return sure(std::any_of(hours.begin(), hours.end(), [&](const auto& interval) {
      return interval.first <= minute_ && minute_ < interval.second;
    }));
  });
}

Sure DoorDecision::inHours(const Holdings& held, const Possible& weeklyProgram, Sure holiday) const {
  return ofAll(weeklyProgram, [&](const std::string& number) {
    if (number == alwaysProgram) return Sure::yes;
    if (number.empty()) return Sure::no;
    return ofAll(held.thing(ThingKind::weeklyC, numberOf(number)), [&](const std::string& days) {
      if (days.empty()) return Sure::no;
      const Sure onHoliday = inDaily(held, dailyProgram(days, true));
      const Sure otherwise = inDaily(held, dailyProgram(days, false));
      if (holiday == Sure::yes || onHoliday == otherwise) return onHoliday;
      return holiday == Sure::no ? otherwise : Sure::unsaid;
    });
  });
}

Sure DoorDecision::isNotPast(std::string_view lastDay) const {
  if (isNone(CardField::lastDay, lastDay)) return Sure::yes;
  const auto day = dateOf(lastDay, today_);
  return day ? sure(!isPast(*day)) : Sure::unsaid;
}

Sure DoorDecision::opens(const Holdings& held, const CardState& card, const std::string& code,
                         CardField door) const {
  const auto hasCode = [&](const std::string& value) {
    return sure(!value.empty() && (code.empty() || value == code));
  };
  const auto hasNoCredit = [](const std::string& value) {
    return isNone(CardField::credit, value) ? Sure::yes : Sure::unsaid;
  };
  return std::min(
      {ofAll(card.part(CardField::code), hasCode),
       ofAll(card.part(door), [](const std::string& value) { return sure(value == "1"); }),
       ofAll(card.part(CardField::lastDay), [&](const std::string& value) { return isNotPast(value); }),
       ofAll(card.part(CardField::credit), hasNoCredit),
       inHours(held, card.part(CardField::weekly), isHoliday(held))});
}

Sure hasPart(const CardState& card, CardField field, const std::string& wanted) {
  return ofAll(card.part(field), [&](const std::string& value) {
    return sure(value == wanted || (isNone(field, value) && isNone(field, wanted)));
  });
}

}  // namespace voxa
