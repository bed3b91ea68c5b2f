#include "work/moments.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "platform/clock.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr int hoursADay = 24;
constexpr int minutesADay = 24 * 60;
constexpr int daysAWeek = 7;

Span dayOf(DateTime moment) {
  CivilTime start = toCivil(moment);
  start.hour = start.minute = start.second = 0;
  const DateTime from = toDateTime(start);
  return {from, toDateTime(toCivil({from.days + 1}))};
}

Span minuteOf(DateTime moment) {
  CivilTime start = toCivil(moment);
  start.second = 0;
  const DateTime from = toDateTime(start);
  return {from, toDateTime(toCivil({from.days + 1.0 / minutesADay}))};
}

/// How many days ago a day was that is called so; none for another word.
std::optional<int> daysAgo(const std::string& word, DateTime now) {
  if (word == "today") return 0;
  if (word == "yesterday") return 1;
  constexpr std::string_view days[] = {"saturday",  "sunday",   "monday", "tuesday",
                                       "wednesday", "thursday", "friday"};
  constexpr std::size_t shortest = 3;
  const int today = static_cast<int>(toDateTime(toCivil(now)).days);  // day 0 was a Saturday
  for (int day = 0; day < daysAWeek; ++day) {
    if (word.size() < shortest || !days[day].starts_with(word)) continue;
    return ((today - day) % daysAWeek + daysAWeek) % daysAWeek;
  }
  return std::nullopt;
}

/// "-7d" and the like; none for another text.
std::optional<Span> backwards(const std::string& text, DateTime now) {
  int count = 0;
  const char* const begin = text.data() + 1;
  const char* const last = text.data() + text.size() - 1;
  if (text.size() < 3 || text.front() != '-' || *begin < '0' || *begin > '9') return std::nullopt;
  const auto [read, failure] = std::from_chars(begin, last, count);
  constexpr int most = 1'000'000;
  if (failure != std::errc() || read != last || count > most) return std::nullopt;
  switch (*last) {
    case 'm':
      return minuteOf({now.days - static_cast<double>(count) / minutesADay});
    case 'h':
      return minuteOf({now.days - static_cast<double>(count) / hoursADay});
    case 'd':
      return dayOf({now.days - count});
    case 'w':
      return dayOf({now.days - static_cast<double>(count) * daysAWeek});
    default:
      return std::nullopt;
  }
}

Span readSpan(const std::string& text, const Clock& clock) {
  const DateTime now = clock.now();
  const std::string words = toLower(trimmed(text));
  if (const auto span = backwards(words, now)) return *span;
  const std::size_t end = words.find(' ');
  if (const auto ago = daysAgo(words.substr(0, end), now)) {
    const Span day = dayOf({now.days - *ago});
    if (end == std::string::npos) return day;
    const auto time = parseDateTime(trimmed(words.substr(end)), &clock);
    if (time && time->days < 1) return minuteOf({day.from.days + time->days});
  } else if (const auto moment = parseDateTime(text, &clock); moment && moment->days >= 1) {
    return text.find(':') == std::string::npos ? dayOf(*moment) : minuteOf(*moment);
  }
  throw Refusal(
      "'" + text +
      "' is no date: write 24/12/2026, \"24/12/2026 18:05\", today, yesterday, monday, -7d or -12h");
}

}  // namespace

Span writtenSpan(const std::string& text, const Clock& clock) {
  try {
    return readSpan(text, clock);
  } catch (const Error& failure) {
    if (failure.number() != err::overflow) throw;
    throw Refusal("'" + text + "' is too far away: name a day of the years 1900 to 9998");
  }
}

}  // namespace voxa
