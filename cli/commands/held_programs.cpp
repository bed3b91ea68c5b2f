#include "held_programs.h"

#include "platform/text.h"
#include "site/contents.h"

namespace voxa::cli {

namespace {

std::string clockText(int minutes) {
  return zeroPadded(minutes / 60, 2) + ":" + zeroPadded(minutes % 60, 2);
}

}  // namespace

std::vector<std::string> intervalTexts(const site::DailyProgram& program) {
  std::vector<std::string> texts;
  for (const site::Interval& interval : program.intervals) {
    if (interval.start < interval.end)
      texts.push_back(clockText(interval.start) + "-" + clockText(interval.end));
  }
  return texts;
}

std::string intervalsText(const site::DailyProgram& program) {
  std::string text;
  for (const std::string& interval : intervalTexts(program)) text += (text.empty() ? "" : " ") + interval;
  return text.empty() ? "none" : text;
}

std::string daysText(const site::WeeklyProgram& program) {
  std::string text;
  for (const int day : program.days) text += (text.empty() ? "" : " ") + std::to_string(day);
  return text + ", holidays " + std::to_string(program.holiday);
}

std::string dateText(const site::Holiday& holiday) {
  const std::string dayAndMonth = zeroPadded(holiday.day, 2) + "/" + zeroPadded(holiday.month, 2);
  return dayAndMonth + (holiday.year ? "/" + zeroPadded(*holiday.year, 4) : " every year");
}

}  // namespace voxa::cli
