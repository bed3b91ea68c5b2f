#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "work/daily_programs.h"
#include "work/program_uses.h"
#include "work/week_days.h"

namespace voxa {

class Installation;

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
  /// The daily program of each place: 0 (never) where the row has none. One that there is not has its number
  /// as its name, and no intervals.
  std::array<DailyProgramRow, weekPlaces> week;
  bool toSend = false;

  /// "Mon-Fri Office 08:00-12:00 13:00-18:00, Sat-Sun Never, holidays Never".
  [[nodiscard]] std::string weekText() const;
};

// family: "C" or "E". What cannot be as it is written is a Refusal, and nothing is changed then.

/// Adds a program, marked to be sent; returns its number. Needs a name, the days and the holidays.
std::int16_t addWeeklyProgram(Installation& installation, const std::string& family,
                              const WeeklyProgramTexts& texts);
/// Changes the program of that number or name; other days mark it. Those of program 0 (always) are fixed.
void changeWeeklyProgram(Installation& installation, const std::string& family,
                         const std::string& numberOrName, const WeeklyProgramTexts& texts);

/// What the doors do of which a deletion changed the program.
struct MovedDoors {
  WeeklyUses uses;                  ///< what had the deleted program, and has the other one now
  std::vector<std::string> beside;  ///< in words: doors that are not as the links say, or open only now
};
/// Deletes a program; 0 (always) stays. moveTo: number or name of the one of its family by which its doors
/// open from now on; without one a Refusal names those that use it. The links, groups and cards are marked.
/// Until its download a controller goes by the program that it has.
MovedDoors deleteWeeklyProgram(Installation& installation, const std::string& family,
                               const std::string& numberOrName, const std::string& moveTo = "");
[[nodiscard]] WeeklyProgramRow findWeeklyProgram(Installation& installation, const std::string& family,
                                                 const std::string& numberOrName);
/// By family and number.
[[nodiscard]] std::vector<WeeklyProgramRow> listWeeklyPrograms(Installation& installation);

}  // namespace voxa
