#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "work/week_days.h"

namespace voxa {
class Recordset;
}

namespace voxa {

class Installation;

// Who uses a daily or weekly program. One that is used can only be deleted when another takes its place.

/// A weekly program that has a daily program on some of its days.
struct DailyUse {
  std::string family;
  std::int16_t number = 0;
  std::string name;
  WeekPlaces places;
};
[[nodiscard]] std::vector<DailyUse> usesOfDailyProgram(Installation& installation, std::int16_t id);

/// The doors that an access group opens under a weekly program.
struct WeeklyUse {
  std::int16_t group = 0;
  std::string name;
  std::vector<std::string> readers;
};
struct WeeklyUses {
  std::vector<WeeklyUse> groups;     ///< by number
  std::vector<std::string> readers;  ///< that have it as the program of the door itself, which is stored only
  [[nodiscard]] bool empty() const { return groups.empty() && readers.empty(); }
};
[[nodiscard]] WeeklyUses usesOfWeeklyProgram(Installation& installation, const std::string& family,
                                             std::int16_t number);

/// "weekly program C1 (Staff) on Mon-Fri, holidays", each.
[[nodiscard]] std::vector<std::string> textsOf(const std::vector<DailyUse>& uses);
/// "access group Staff at Front door, Back door", each; "the door itself of Front door (stored only)".
[[nodiscard]] std::vector<std::string> textsOf(const WeeklyUses& uses);
/// Why something stays, with those that use it below, and what to do.
[[nodiscard]] std::string inUse(const std::string& what, const std::vector<std::string>& uses);

/// The column of "WeeklyPrograms" with the daily program of a place, and the places where a row has it.
[[nodiscard]] std::string dailyColumn(std::size_t place);
[[nodiscard]] WeekPlaces placesWith(const Recordset& weeklyProgram, std::int16_t daily);

}  // namespace voxa
