#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace voxa {

/// Which daily program is in force on which day.
struct WeeklyProgramRecord {
  std::string family;  ///< "C", or any other for the second family
  std::int16_t number = 0;
  std::array<std::int16_t, 7> days{};  ///< Monday first
  std::int16_t holidays = 0;
};

/// "32" (family "C", else "42"), the number (1 to 99), the programs of the seven days and the one of
/// holidays, two digits each. When a day uses daily program 1, the whole day, its definition follows, so that
/// the controller holds what the line refers to. A holiday does not count for that.
[[nodiscard]] std::vector<std::string> weeklyProgramLines(const WeeklyProgramRecord& program);

}  // namespace voxa
