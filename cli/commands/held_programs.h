#pragma once

#include <string>
#include <vector>

namespace site {
struct DailyProgram;
struct Holiday;
struct WeeklyProgram;
}  // namespace site

namespace voxa::cli {

// What a simulated controller holds, as a person reads it.

/// "08:00-12:00" and so on, the end of the day as 24:00, without the empty intervals.
[[nodiscard]] std::vector<std::string> intervalTexts(const site::DailyProgram& program);
/// "08:00-12:00 13:00-17:00"; "none" without any.
[[nodiscard]] std::string intervalsText(const site::DailyProgram& program);
/// "2 2 2 2 2 0 0, holidays 0", Monday first.
[[nodiscard]] std::string daysText(const site::WeeklyProgram& program);
/// "25/12/2026", or "25/12 every year".
[[nodiscard]] std::string dateText(const site::Holiday& holiday);

}  // namespace voxa::cli
