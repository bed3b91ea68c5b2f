#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "work/program_uses.h"

namespace voxa {

class Installation;

constexpr std::size_t mostIntervals = 4;

/// A daily program as a person writes it. What is not given stays as it is.
struct DailyProgramTexts {
  std::optional<std::string> name = {};
  /// "08:00-12:00", the end of the day as 24:00; "none" for an interval that is not used. The third and
  /// fourth are for controllers that work with four intervals a day.
  std::array<std::optional<std::string>, mostIntervals> intervals = {};
};

struct DailyProgramRow {
  std::int16_t id = 0;
  std::string name;
  /// Two, or four where the controllers work with four: "08:00-12:00", the end of the day as 24:00, or
  /// "none".
  std::vector<std::string> intervals;
  bool toSend = false;

  [[nodiscard]] std::vector<std::string> hours() const;  ///< the intervals that are used
};

// What cannot be as it is written is a Refusal, and nothing is changed then.

/// Adds a program, marked to be sent; returns its number. Of the first two intervals, one that is not given
/// is not used.
std::int16_t addDailyProgram(Installation& installation, const DailyProgramTexts& texts);
/// Changes the program of that number or name; other times mark it. Those of 0 (never) and 1 (the whole day)
/// are fixed.
void changeDailyProgram(Installation& installation, const std::string& numberOrName,
                        const DailyProgramTexts& texts);
/// Deletes a program; 0 and 1 stay. moveTo: number or name of the one that the weekly programs have in its
/// place from now on, which are marked; without one a Refusal names those that use it. Returns them.
/// Controllers keep the times of a number that no weekly program names any more: nothing goes by them.
std::vector<DailyUse> deleteDailyProgram(Installation& installation, const std::string& numberOrName,
                                         const std::string& moveTo = "");
[[nodiscard]] DailyProgramRow findDailyProgram(Installation& installation, const std::string& numberOrName);
[[nodiscard]] std::vector<DailyProgramRow> listDailyPrograms(Installation& installation);  ///< by number

}  // namespace voxa
