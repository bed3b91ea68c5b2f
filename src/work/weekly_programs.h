#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {

class Installation;

constexpr std::size_t daysAWeek = 7;

/// A weekly program as a person writes it. What is not given stays as it is.
struct WeeklyProgramTexts {
  std::optional<std::string> name = {};
  /// Daily programs by number or name: one for all days, or seven, Monday first; none when they stay.
  std::vector<std::string> days = {};
  std::optional<std::string> holidays = {};  ///< daily program of holidays, by number or name
};

struct WeeklyProgramRow {
  std::string family;
  std::int16_t number = 0;
  std::string name;
  std::array<Value, daysAWeek> days;  ///< numbers of daily programs, Monday first
  Value holidays;                     ///< that of holidays
  bool toSend = false;
};

// family: "C" or "E". What cannot be as it is written is a Refusal, and nothing is changed then.

/// Adds a program, marked to be sent; returns its number. Needs a name, the days and the holidays.
std::int16_t addWeeklyProgram(Installation& installation, const std::string& family,
                              const WeeklyProgramTexts& texts);
/// Changes the program of that number or name and marks it. The days of program 0 (always) are fixed.
void changeWeeklyProgram(Installation& installation, const std::string& family,
                         const std::string& numberOrName, const WeeklyProgramTexts& texts);
/// By family and number.
[[nodiscard]] std::vector<WeeklyProgramRow> listWeeklyPrograms(Installation& installation);

}  // namespace voxa
