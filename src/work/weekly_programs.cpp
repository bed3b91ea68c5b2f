#include "work/weekly_programs.h"

#include <map>

#include "platform/database/database.h"
#include "programs/weekly_program.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

std::string dayColumn(std::size_t day) {
  return "DailyProgDay" + std::to_string(day + 1);
}

void requireFamily(const std::string& family) {
  if (family != "C" && family != "E")
    throw Refusal("the family of a weekly program is C or E, not " + family);
}

/// Numbers of daily programs; a name that stands on several days is looked up once.
class DailyNumbers {
 public:
  explicit DailyNumbers(Installation& installation) : installation_(installation) {}
  std::int16_t of(const std::string& numberOrName) {
    const auto known = numbers_.find(numberOrName);
    if (known != numbers_.end()) return known->second;
    return numbers_[numberOrName] = dailyProgramNamed(installation_, numberOrName)->get("Id").toInt16();
  }

 private:
  Installation& installation_;
  std::map<std::string, std::int16_t> numbers_;
};

/// Whether there were any.
bool setDays(Installation& installation, Recordset& row, const WeeklyProgramTexts& texts) {
  DailyNumbers numbers(installation);
  std::vector<std::int16_t> programs;
  for (const std::string& day : texts.days) programs.push_back(numbers.of(day));
  if (programs.size() == 1) programs.assign(daysAWeek, programs.front());
  if (!programs.empty() && programs.size() != daysAWeek) {
    throw Refusal("a week takes one daily program for all days or seven, Monday first, not " +
                  std::to_string(programs.size()));
  }
  for (std::size_t day = 0; day < programs.size(); ++day) row.set(dayColumn(day), programs[day]);
  if (texts.holidays) row.set("DailyProgHolidays", numbers.of(*texts.holidays));
  return !programs.empty() || texts.holidays;
}

}  // namespace

std::int16_t addWeeklyProgram(Installation& installation, const std::string& family,
                              const WeeklyProgramTexts& texts) {
  requireFamily(family);
  if (texts.days.empty() || !texts.holidays) {
    throw Refusal("a weekly program needs the daily programs of its days and of holidays");
  }
  const std::int16_t number = installation.WeeklyPrograms().getFreeId(family);
  if (number == -1) throw Refusal("family " + family + " holds all the programs it can (31)");
  const auto rows = installation.database().openRecordset("select * from WeeklyPrograms");
  rows->addNew();
  rows->set("ProgType", family);
  rows->set("ProgNum", number);
  rows->set("Name", checkedName(texts.name.value_or("")));
  setDays(installation, *rows, texts);
  rows->set("WeeklyProgramFlagD", true);
  storeRow(installation, *rows, "WeeklyPrograms", "weekly program");
  return number;
}

void changeWeeklyProgram(Installation& installation, const std::string& family,
                         const std::string& numberOrName, const WeeklyProgramTexts& texts) {
  requireFamily(family);
  const auto row = weeklyProgramNamed(installation, family, numberOrName);
  row->edit();
  if (texts.name) row->set("Name", checkedName(*texts.name));
  if (setDays(installation, *row, texts) && row->get("ProgNum").toInt16() == 0) {
    throw Refusal("the days of the built-in program 0 (always) are fixed");
  }
  row->set("WeeklyProgramFlagD", true);
  storeRow(installation, *row, "WeeklyPrograms", "weekly program");
}

std::vector<WeeklyProgramRow> listWeeklyPrograms(Installation& installation) {
  std::vector<WeeklyProgramRow> programs;
  const auto rows =
      installation.database().openRecordset("select * from WeeklyPrograms order by ProgType, ProgNum");
  for (; !rows->eof(); rows->moveNext()) {
    WeeklyProgramRow& program = programs.emplace_back();
    program.family = rows->get("ProgType").toText();
    program.number = rows->get("ProgNum").toInt16();
    program.name = rows->get("Name").toText();
    for (std::size_t day = 0; day < daysAWeek; ++day) program.days.at(day) = rows->get(dayColumn(day));
    program.holidays = rows->get("DailyProgHolidays");
    program.toSend = rows->get("WeeklyProgramFlagD").toBool();
  }
  return programs;
}

}  // namespace voxa
