#include "lines/weekly_program.h"

#include <algorithm>

#include "lines/field.h"

namespace voxa {

namespace {

constexpr std::int16_t wholeDay =
    1;  // the daily program that any day may use without a definition of its own
constexpr const char* wholeDayDefinition = "31010000240024002400";

std::string dayField(std::int16_t program) {
  return numberField(program, 0, 2, "number of a day's program");
}

}  // namespace

std::vector<std::string> weeklyProgramLines(const WeeklyProgramRecord& program) {
  std::string line =
      (program.family == "C" ? "32" : "42") + numberField(program.number, 1, 2, "weekly program number");
  for (const std::int16_t day : program.days) line += dayField(day);
  std::vector<std::string> lines = {line + dayField(program.holidays)};
  if (std::find(program.days.begin(), program.days.end(), wholeDay) != program.days.end()) {
    lines.emplace_back(wholeDayDefinition);
  }
  return lines;
}

}  // namespace voxa
