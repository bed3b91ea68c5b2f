#include "controllers/sent_line.h"

#include <algorithm>
#include <array>
#include <optional>

#include "lines/holiday.h"

namespace voxa {

namespace {

using Fit = SentLine::Fit;

constexpr char speedChange = '\x7f';
constexpr std::string_view vrmd1 = "VRMD1";
constexpr std::string_view clearingCode = "00000000";
constexpr std::string_view noDay = "000000";
constexpr std::size_t codeWidth = 8;
constexpr int minutesOfDay = 24 * 60;

bool isDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool isCode(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '?'; });
}

int number(std::string_view digits) {
  int value = 0;
  for (const char digit : digits) value = value * 10 + (digit - '0');
  return value;
}

SentLine thing(ThingKind kind, std::string_view digits, std::string_view value, bool fits) {
  return {fits ? Fit::certain : Fit::doubtful, kind, number(digits), {}, 0, std::string(value)};
}

SentLine whole(ThingKind kind) {
  return {Fit::wholeKind, kind, 0, {}, 0, ""};
}

bool isTime(std::string_view hhmm) {
  const int minutes = number(hhmm.substr(0, 2)) * 60 + number(hhmm.substr(2));
  return number(hhmm.substr(2)) < 60 && minutes <= minutesOfDay;
}

// ddmmyy; the year 00 of a holiday stands for every year.
bool isDay(std::string_view ddmmyy, bool yearly) {
  static constexpr std::array<int, 12> days = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const int day = number(ddmmyy.substr(0, 2));
  const int month = number(ddmmyy.substr(2, 2));
  const int year = number(ddmmyy.substr(4));
  if (month < 1 || month > 12 || day < 1 || day > days.at(static_cast<std::size_t>(month - 1))) return false;
  // A year 00 may be 2000, which had that day, or 1900 or 2100, which do not.
  return month != 2 || day != 29 || (year == 0 ? yearly : year % 4 == 0);
}

SentLine daily(std::string_view rest) {
  const bool width = rest.size() == 2 + 4 * 4 || rest.size() == 2 + 8 * 4;
  if (!width || !isDigits(rest) || number(rest.substr(0, 2)) == 0) return whole(ThingKind::daily);
  bool fits = true;
  for (std::size_t at = 2; at < rest.size(); at += 4) fits = fits && isTime(rest.substr(at, 4));
  return thing(ThingKind::daily, rest.substr(0, 2), rest.substr(2), fits);
}

SentLine weekly(ThingKind kind, std::string_view rest) {
  if (rest.size() != 2 + 8 * 2 || !isDigits(rest) || number(rest.substr(0, 2)) == 0) return whole(kind);
  return thing(kind, rest.substr(0, 2), rest.substr(2), true);
}

SentLine holiday(std::string_view rest, std::string_view type) {
  if (rest.size() != 2 + 6 || !isDigits(rest)) return whole(ThingKind::holiday);
  const int slot = number(rest.substr(0, 2));
  const std::string_view day = rest.substr(2);
  const bool erases = day == noDay;
  const bool fits = slot >= 1 && slot <= holidaySlots(type) && (erases || isDay(day, true));
  return thing(ThingKind::holiday, rest.substr(0, 2), erases ? "" : day, fits);
}

SentLine badgeFormat(std::string_view rest, std::string_view type) {
  static constexpr std::array<std::string_view, 11> technologies = {"800", "000", "001", "008", "009", "108",
                                                                    "508", "300", "200", "201", "600"};
  static constexpr std::size_t fixedPart = 16;
  static constexpr std::size_t technologyWidth = 3;
  if (rest.size() < fixedPart) return whole(ThingKind::badgeFormat);
  const std::string_view fixed = rest.substr(rest.size() - fixedPart);
  const std::string_view before = rest.substr(0, rest.size() - fixedPart);
  const std::string_view cardType = fixed.substr(6, 2);
  bool fits =
      isDigits(fixed.substr(0, 8)) && (cardType == "04" || cardType == "08") && isCode(fixed.substr(8));
  if (before.empty()) return thing(ThingKind::badgeFormat, "0", fixed, fits);
  const bool readable =
      before.size() > technologyWidth && before.size() <= technologyWidth + 2 && isDigits(before);
  if (!readable) return whole(ThingKind::badgeFormat);
  const std::string_view technology = before.substr(before.size() - technologyWidth);
  fits = fits && type == vrmd1 &&
         std::find(technologies.begin(), technologies.end(), technology) != technologies.end();
  return thing(ThingKind::badgeFormat, before.substr(0, before.size() - technologyWidth),
               std::string(technology) + std::string(fixed), fits);
}

std::optional<CardField> fieldOf(std::string_view command) {
  if (command == "09") return CardField::code;
  if (command == "33") return CardField::weekly;
  if (command == "16") return CardField::door1;
  if (command == "17") return CardField::door2;
  if (command == "19") return CardField::pin;
  if (command == "49") return CardField::supervisor;
  if (command == "35") return CardField::lastDay;
  if (command == "36") return CardField::credit;
  if (command == "37") return CardField::lift;
  return std::nullopt;
}

// Whether the value of a field has its width.
bool hasWidth(CardField field, std::string_view value, bool separated) {
  switch (field) {
    case CardField::code:
      return value.size() == codeWidth;
    case CardField::weekly:
    case CardField::credit:
    case CardField::lift:
      return value.size() == 2;
    case CardField::door1:
    case CardField::door2:
      return value.size() == 1;
    case CardField::pin:
      return value.size() == 4;
    case CardField::lastDay:
      return value.size() == 6;
    case CardField::supervisor:
      break;
  }
  return value.size() == 1 || (value.empty() && !separated);
}

// Fills in the value, and whether a controller takes it.
bool takeCode(std::string_view value, SentLine& line) {
  if (value == clearingCode) return true;
  const std::string_view code = value.substr(std::min(value.find_first_not_of(' '), value.size()));
  line.value = std::string(codeWidth - code.size(), '0') + std::string(code);
  return isCode(code) && line.value != clearingCode;
}

bool takeValue(std::string_view value, bool separated, SentLine& line) {
  if (line.field == CardField::code) return takeCode(value, line);
  line.value = value;
  switch (line.field) {
    case CardField::supervisor:
      if (value.empty()) line.value = "1";
      return separated ? value == "0" || value == "1" : value.empty() || value == "0";
    case CardField::door1:
    case CardField::door2:
      return value == "0" || value == "1";
    case CardField::lastDay:
      return isDigits(value) && (value == noDay || isDay(value, false));
    case CardField::lift:
      line.value = "1";
      if (isDigits(value)) line.output = static_cast<std::int16_t>(number(value));
      return isDigits(value);
    default:
      return isDigits(value);
  }
}

SentLine card(CardField field, std::string_view rest, std::string_view type) {
  static constexpr std::size_t numberWidth = 4;
  static constexpr std::string_view version = ";01;";
  const bool separated = rest.starts_with(version);
  if (separated) rest.remove_prefix(version.size());
  if (rest.size() < numberWidth || !isDigits(rest.substr(0, numberWidth))) return whole(ThingKind::card);
  const std::string_view digits = rest.substr(0, numberWidth);
  rest.remove_prefix(numberWidth);
  if (separated && !rest.starts_with(";")) return whole(ThingKind::card);
  if (separated) rest.remove_prefix(1);
  if (!hasWidth(field, rest, separated)) return whole(ThingKind::card);
  SentLine line = thing(ThingKind::card, digits, "", true);
  line.field = field;
  const bool taken = takeValue(rest, separated, line);
  // Every controller takes the lift lines, and the line that clears a card, in the plain form.
  const bool anyForm = !separated && (field == CardField::lift || rest == clearingCode);
  const bool form = separated ? type == vrmd1 : anyForm || (!type.empty() && type != vrmd1);
  if (field == CardField::lift && line.output == 0 && !taken) return whole(ThingKind::card);
  if (!taken || !form || line.number == 0) line.fit = Fit::doubtful;
  return line;
}

SentLine understood(std::string_view line, std::string_view controllerType) {
  const std::string_view command = line.substr(0, 2);
  const std::string_view rest = line.substr(command.size());
  if (command == "31") return daily(rest);
  if (command == "32") return weekly(ThingKind::weeklyC, rest);
  if (command == "42") return weekly(ThingKind::weeklyE, rest);
  if (command == "34") return holiday(rest, controllerType);
  if (command == "04") return badgeFormat(rest, controllerType);
  if (const auto field = fieldOf(command)) return card(*field, rest, controllerType);
  return {};
}

}  // namespace

SentLine sentLine(std::string_view line, std::string_view controllerType) {
  if (line.starts_with(speedChange)) return {Fit::lineSpeed, {}, 0, {}, 0, ""};
  SentLine result = understood(line, controllerType);
  const auto isOfValue = [](char c) { return c == ' ' || (c >= '0' && c <= '?'); };
  // A program is known by its number.
  const bool noProgram =
      result.kind == ThingKind::card && result.field == CardField::weekly && !isDigits(result.value);
  const bool ofThing = result.fit <= Fit::anyValue;
  if (ofThing && (noProgram || !std::all_of(result.value.begin(), result.value.end(), isOfValue))) {
    result.fit = Fit::anyValue;
    result.value.clear();
  }
  return result;
}

}  // namespace voxa
