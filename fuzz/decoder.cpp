// Lines that a controller gets. What a line means is written as a line for the same kind of controller. That
// line must mean the same.

#include "site/decoder.h"

#include <cstdint>
#include <cstdio>

#include "require.h"

namespace site {
namespace {

using voxa::fuzz::require;

std::string digits(int number, int width) {
  char text[16];
  (void)std::snprintf(text, sizeof text, "%0*d", width, number);
  return text;
}
std::string dayText(int day, int month, int year) {
  return digits(day, 2) + digits(month, 2) + digits(year % 100, 2);
}

/// Writes the line that means the command.
struct Encoder {
  bool vrmd1;

  [[nodiscard]] std::string card(const char* code, int number, const std::string& rest) const {
    const std::string link = vrmd1 ? ";" : "";
    return code + (vrmd1 ? ";01;" : link) + digits(number, 4) + link + rest;
  }

  std::string operator()(const DailyProgram& p) const {
    std::string line = "31" + digits(p.number, 2);
    for (const Interval& i : p.intervals) {
      for (const int minutes : {i.start, i.end}) line += digits(minutes / 60, 2) + digits(minutes % 60, 2);
    }
    return line;
  }
  std::string operator()(const WeeklyProgram& p) const {
    std::string line = (p.family == 'C' ? "32" : "42") + digits(p.number, 2);
    for (const int day : p.days) line += digits(day, 2);
    return line + digits(p.holiday, 2);
  }
  std::string operator()(const Holiday& h) const {
    return "34" + digits(h.slot, 2) + dayText(h.day, h.month, h.year.value_or(0));
  }
  std::string operator()(const EraseHoliday& h) const { return "34" + digits(h.slot, 2) + "000000"; }
  std::string operator()(const BadgeFormat& f) const {
    const std::string reader = f.technology.empty() ? "" : digits(f.reader, 1) + f.technology;
    return "04" + reader + digits(f.sitePosition, 2) + digits(f.siteLength, 2) + digits(f.cardPosition, 2) +
           digits(f.cardType, 2) + f.siteCode;
  }
  std::string operator()(const CardCode& c) const { return card("09", c.number, c.code); }
  std::string operator()(const EraseCard& c) const { return "09" + digits(c.number, 4) + "00000000"; }
  std::string operator()(const CardSetting& c) const {
    const int value = c.value.value_or(0);
    switch (c.field) {
      case CardField::weekly:
        return card("33", c.number, digits(value, 2));
      case CardField::door1:
        return card("16", c.number, digits(value, 1));
      case CardField::door2:
        return card("17", c.number, digits(value, 1));
      case CardField::supervisor:
        return card("49", c.number, value == 1 && !vrmd1 ? "" : digits(value, 1));
      case CardField::credit:
        return card("36", c.number, digits(value, 2));
      case CardField::validUntil:
        break;
    }
    const Date day = unpacked(value);
    return card("35", c.number, dayText(day.day, day.month, day.year));
  }
  std::string operator()(const CardPin& c) const { return card("19", c.number, c.pin); }
  std::string operator()(const CardLift& c) const { return card("37", c.number, digits(c.output, 2)); }
  std::string operator()(const SpeedChange& s) const {
    return std::string("\x7F") + (s.speed == 4800    ? "0"
                                  : s.speed == 9600  ? "1"
                                  : s.speed == 19200 ? "2"
                                                     : "3");
  }
};

/// Whether lines of another form have the same meaning as the command.
bool hasOtherForms(const Command& command) {
  return std::holds_alternative<CardCode>(command) || std::holds_alternative<CardLift>(command) ||
         std::holds_alternative<EraseCard>(command) || std::holds_alternative<BadgeFormat>(command);
}

void check(std::string_view line, const char* type) {
  const Date today{2031, 6, 15};
  const Encoder encoder{std::string_view(type) == "VRMD1"};
  std::string encoded;
  try {
    const Command command = decode(line, type, today);
    encoded = std::visit(encoder, command);
    require(hasOtherForms(command) || encoded == line, "the line is the only one with its meaning");
  } catch (const Undecodable&) {
    return;
  }
  require(std::visit(encoder, decode(encoded, type, today)) == encoded,
          "a command's line decodes to the command");
}

}  // namespace
}  // namespace site

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  site::check(line, "QSX3");
  site::check(line, "VRMD1");
  return 0;
}
