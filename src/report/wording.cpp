#include "report/wording.h"

#include <cmath>

#include "platform/datetime.h"
#include "platform/text.h"
#include "report/figures.h"

namespace voxa {

namespace {

std::string dateText(const CivilTime& parts) {
  return std::to_string(parts.day) + " " + std::string(monthName(parts.month)) + " " +
         std::to_string(parts.year);
}

CivilTime partsOf(int day) {
  return toCivil({static_cast<double>(day)});
}

}  // namespace

std::string grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t place = text.size(); place > 3; place -= 3) text.insert(place - 3, ",");
  return text;
}

std::string counted(std::uint64_t number, const std::string& thing) {
  return grouped(number) + " " + thing + (number == 1 ? "" : "s");
}

std::string share(std::uint64_t part, std::uint64_t whole) {
  if (whole == 0) return "-";
  const auto percent = std::llround(100 * static_cast<double>(part) / static_cast<double>(whole));
  if (percent == 100 && part != whole) return "over 99 %";
  if (percent == 0 && part != 0) return "under 1 %";
  return std::to_string(percent) + " %";
}

std::string outcomeText(const Outcomes& outcomes) {
  const std::string text = counted(outcomes.presentations(), "presentation");
  return outcomes.refused() == 0 ? text : text + ", " + grouped(outcomes.refused()) + " refused";
}

std::string dayText(int day) {
  constexpr const char* names[] = {"Saturday",  "Sunday",   "Monday", "Tuesday",
                                   "Wednesday", "Thursday", "Friday"};  // day 0 was a Saturday
  return std::string(names[day % 7]) + " " + dateText(partsOf(day));
}

std::string shortDayText(int day) {
  return formatDateTime({static_cast<double>(day)}, "d mmm");
}

std::string momentText(DateTime moment) {
  return formatDateTime(moment, "dd/mm/yyyy hh:nn");
}

std::string timeText(const Figures& figures) {
  const auto isDay = [](DateTime moment) { return moment.days == std::floor(moment.days); };
  if (!isDay(figures.since) || !isDay(figures.until))
    return "from " + momentText(figures.since) + " to " + momentText(figures.until);
  const CivilTime first = toCivil(figures.since);
  const CivilTime last = toCivil({figures.until.days - 1});
  if (first == last) return "on " + dateText(first);
  if (first.year != last.year) return "from " + dateText(first) + " to " + dateText(last);
  const std::string begin = std::to_string(first.day);
  if (first.month == last.month) return "from " + begin + " to " + dateText(last);
  return "from " + begin + " " + std::string(monthName(first.month)) + " to " + dateText(last);
}

std::string shownName(const std::string& name) {
  std::string shown;
  for (std::size_t at = 0; at < name.size();) {
    const std::size_t behind = behindCharacter(name, at);
    const std::string character = name.substr(at, behind - at);
    at = behind;
    if (!isUtf8(character) || hasControls(character)) {
      shown += "?";
      continue;
    }
    const char32_t number = firstCharacter(character);
    const bool turns = number == 0x200E || number == 0x200F || number == 0x061C ||
                       (number >= 0x202A && number <= 0x202E) || (number >= 0x2066 && number <= 0x2069);
    if (!turns) shown += character;
  }
  return shown;
}

std::string shownDoor(const std::string& name) {
  return name.empty() ? "(no reader)" : shownName(name);
}

std::string within(const std::string& shown) {
  return "\u2068" + shown + "\u2069";  // isolates it
}

}  // namespace voxa
