#include "site/decoder.h"

#include <algorithm>
#include <array>

namespace site {

namespace {

constexpr char speedChange = '\x7F';
constexpr std::string_view emptyCode = "00000000";
constexpr std::string_view noDate = "000000";
constexpr std::string_view recordVersion = "01";

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isCodeCharacter(char c) {
  return c >= '0' && c <= '?';
}

int value(std::string_view digits, const std::string& what) {
  if (digits.empty() || !std::all_of(digits.begin(), digits.end(), isDigit)) {
    throw Undecodable(what + " is not a number");
  }
  int number = 0;
  for (const char digit : digits) number = number * 10 + (digit - '0');
  return number;
}

// Reads a line from the left, field by field; each field has a fixed width.
class Fields {
 public:
  explicit Fields(std::string_view line) : rest_(line) {}
  std::string_view text(std::size_t width, const std::string& what) {
    if (rest_.size() < width) throw Undecodable("the line ends before or in the " + what);
    const std::string_view field = rest_.substr(0, width);
    rest_.remove_prefix(width);
    return field;
  }
  int number(std::size_t width, const std::string& what) { return value(text(width, what), what); }
  int minutes(const std::string& what) {
    const int hhmm = number(4, what);
    const int result = hhmm / 100 * 60 + hhmm % 100;
    if (hhmm % 100 > 59 || result > 24 * 60) throw Undecodable(what + " is no time of day");
    return result;
  }
  [[nodiscard]] std::size_t left() const { return rest_.size(); }
  [[nodiscard]] std::string_view rest() const { return rest_; }
  void end() const {
    if (!rest_.empty()) throw Undecodable("the line is too long");
  }

 private:
  std::string_view rest_;
};

// A number of the given width that can be defined, so from 1 on: 0 is a built-in one.
int definable(Fields& fields, const std::string& what) {
  const int number = fields.number(2, what);
  if (number == 0) throw Undecodable(what + " is 00");
  return number;
}

DailyProgram dailyProgram(Fields fields) {
  DailyProgram program;
  program.number = definable(fields, "daily program number");
  const std::size_t count = fields.left() == 32 ? 4 : 2;
  for (std::size_t i = 0; i < count; ++i) {
    const int start = fields.minutes("interval start");
    program.intervals.push_back({start, fields.minutes("interval end")});
  }
  fields.end();
  return program;
}

WeeklyProgram weeklyProgram(Fields fields, char family) {
  WeeklyProgram program;
  program.family = family;
  program.number = definable(fields, "weekly program number");
  for (int& day : program.days) day = fields.number(2, "day program");
  program.holiday = fields.number(2, "holiday program");
  fields.end();
  return program;
}

struct DayMonthYear {
  int day = 0;
  int month = 0;
  int year = 0;  // two digits
};

// ddmmyy up to the end of the line; none for 000000.
std::optional<DayMonthYear> dayMonthYear(Fields fields) {
  const std::string_view digits = fields.text(6, "date");
  fields.end();
  if (digits == noDate) return std::nullopt;
  return DayMonthYear{value(digits.substr(0, 2), "day"), value(digits.substr(2, 2), "month"),
                      value(digits.substr(4, 2), "year")};
}

Date existing(const Date& date) {
  if (!exists(date)) throw Undecodable("there is no such day");
  return date;
}

Date dated(const DayMonthYear& date, const Date& today) {
  return existing({nearestYear(date.year, date.month, date.day, today), date.month, date.day});
}

Command holiday(Fields fields, bool vrmd1, const Date& today) {
  const int slot = fields.number(2, "holiday slot");
  const int slots = vrmd1 ? 60 : 20;
  if (slot < 1 || slot > slots) {
    throw Undecodable("the holiday slot is not 01 to " + std::to_string(slots));
  }
  const auto date = dayMonthYear(fields);
  if (!date) return EraseHoliday{slot};
  Holiday result{slot, date->day, date->month, std::nullopt};
  if (date->year != 0) {
    result.year = dated(*date, today).year;
  } else {
    constexpr int leapYear = 2000;  // so that a 29 February of every year is accepted
    (void)existing({leapYear, date->month, date->day});
  }
  return result;
}

BadgeFormat badgeFormat(Fields fields, bool vrmd1) {
  static constexpr std::array<std::string_view, 11> technologies = {"800", "000", "001", "008", "009", "108",
                                                                    "508", "300", "200", "201", "600"};
  static constexpr std::size_t fixedPart = 16;
  BadgeFormat format;
  if (vrmd1 && fields.left() > fixedPart) {
    if (fields.left() < fixedPart + 4) throw Undecodable("the reader number or technology is incomplete");
    format.reader = fields.number(std::min<std::size_t>(fields.left() - fixedPart - 3, 9), "reader number");
    format.technology = fields.text(3, "technology");
    if (std::find(technologies.begin(), technologies.end(), format.technology) == technologies.end()) {
      throw Undecodable("there is no card technology " + format.technology);
    }
  }
  format.sitePosition = fields.number(2, "site position");
  format.siteLength = fields.number(2, "site length");
  format.cardPosition = fields.number(2, "card position");
  format.cardType = fields.number(2, "card type");
  if (format.cardType != 4 && format.cardType != 8) throw Undecodable("the card type is neither 04 nor 08");
  format.siteCode = fields.text(8, "site code");
  if (!std::all_of(format.siteCode.begin(), format.siteCode.end(), isCodeCharacter)) {
    throw Undecodable("the site code has characters outside 0 to ?");
  }
  fields.end();
  return format;
}

bool zeroOrOne(Fields& fields, const std::string& what) {
  const int number = fields.number(1, what);
  if (number > 1) throw Undecodable(what + " is neither 0 nor 1");
  return number == 1;
}

Command cardCode(int number, Fields fields) {
  const std::string_view code = fields.text(8, "card code");
  fields.end();
  if (code == emptyCode) return EraseCard{number};
  // Letters are how people write a code; a line never has them.
  const auto first = std::find_if(code.begin(), code.end(), [](char c) { return c != ' '; });
  if (first == code.end()) throw Undecodable("the card code is blank");
  if (!std::all_of(first, code.end(), isCodeCharacter)) {
    throw Undecodable("the card code has characters outside 0 to ?");
  }
  std::string normal = normalCode(code).value();
  if (normal == emptyCode) throw Undecodable("the card code is zero without being the code that erases");
  return CardCode{number, std::move(normal)};
}

// The line of one card, from behind its number on. separated: the fields had separators between them.
Command cardLine(std::string_view code, int number, Fields fields, bool separated, const Date& today) {
  const auto setting = [&](CardField field, std::optional<int> value) -> Command {
    fields.end();
    return CardSetting{number, field, value};
  };
  if (code == "09") return cardCode(number, fields);
  if (code == "33") return setting(CardField::weekly, fields.number(2, "weekly program number"));
  if (code == "16") return setting(CardField::door1, zeroOrOne(fields, "door right"));
  if (code == "17") return setting(CardField::door2, zeroOrOne(fields, "door right"));
  if (code == "36") {
    const int credit = fields.number(2, "credit");
    return setting(CardField::credit, credit == 0 ? std::nullopt : std::optional(credit));
  }
  if (code == "49") {
    if (separated) return setting(CardField::supervisor, zeroOrOne(fields, "supervisor mark"));
    if (fields.left() == 0) return setting(CardField::supervisor, 1);
    if (fields.number(1, "supervisor mark") != 0) throw Undecodable("the supervisor mark is not 0");
    return setting(CardField::supervisor, 0);
  }
  if (code == "35") {
    const auto date = dayMonthYear(fields);
    if (!date) return CardSetting{number, CardField::validUntil, std::nullopt};
    return CardSetting{number, CardField::validUntil, packed(dated(*date, today))};
  }
  if (code == "19") {
    const std::string_view pin = fields.text(4, "personal code");
    value(pin, "personal code");
    fields.end();
    return CardPin{number, std::string(pin)};
  }
  const int output = fields.number(2, "lift output");
  fields.end();
  return CardLift{number, output};
}

bool isCardCommand(std::string_view code) {
  static constexpr std::array<std::string_view, 9> codes = {"09", "16", "17", "19", "33",
                                                            "35", "36", "37", "49"};
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

Command card(std::string_view code, Fields fields, bool vrmd1, const Date& today) {
  const auto separator = [&](const std::string& before) {
    if (fields.text(1, "separator") != ";") throw Undecodable("no ; behind the " + before);
  };
  // Every controller takes the lift lines, and the line that clears a card, in the same form.
  const std::string_view rest = fields.rest();
  const bool plain = (code == "37" && rest.size() == 6) ||
                     (code == "09" && rest.size() == 12 && rest.substr(4) == emptyCode);
  const bool separated = vrmd1 && !plain;
  if (separated) {
    separator("command code");
    if (fields.text(2, "record version") != recordVersion) throw Undecodable("the record version is not 01");
    separator("record version");
  }
  const int number = fields.number(4, "card number");
  if (number == 0) throw Undecodable("card number is 0000");
  if (separated) separator("card number");
  return cardLine(code, number, fields, separated, today);
}

}  // namespace

Command decode(std::string_view line, std::string_view controllerType, const Date& today) {
  const bool vrmd1 = controllerType == "VRMD1";
  Fields fields(line);
  if (!line.empty() && line.front() == speedChange) {
    static constexpr std::array<int, 4> speeds = {4800, 9600, 19200, 38400};
    fields.text(1, "command code");
    const int code = fields.number(1, "speed code");
    fields.end();
    if (code > 3) throw Undecodable("the speed code is not 0 to 3");
    return SpeedChange{speeds[static_cast<std::size_t>(code)]};
  }
  const std::string_view code = fields.text(2, "command code");
  if (code == "31") return dailyProgram(fields);
  if (code == "32") return weeklyProgram(fields, 'C');
  if (code == "42") return weeklyProgram(fields, 'E');
  if (code == "34") return holiday(fields, vrmd1, today);
  if (code == "04") return badgeFormat(fields, vrmd1);
  if (isCardCommand(code)) return card(code, fields, vrmd1, today);
  throw Undecodable("unknown command code");
}

std::optional<std::string> normalCode(std::string_view code) {
  constexpr std::size_t width = 8;
  while (!code.empty() && code.front() == ' ') code.remove_prefix(1);
  if (code.empty() || code.size() > width) return std::nullopt;
  std::string result(width - code.size(), '0');
  for (char c : code) {
    if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + ':');
    if (c >= 'A' && c <= 'F') c = static_cast<char>(c - 'A' + ':');
    if (!isCodeCharacter(c)) return std::nullopt;
    result.push_back(c);
  }
  return result;
}

int packed(const Date& date) {
  return date.year * 10000 + date.month * 100 + date.day;
}

Date unpacked(int day) {
  return {day / 10000, day / 100 % 100, day % 100};
}

}  // namespace site
