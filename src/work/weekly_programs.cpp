#include "work/weekly_programs.h"

#include <map>

#include "files/conversions.h"
#include "platform/database/database.h"
#include "programs/weekly_program.h"
#include "work/group_list.h"
#include "work/group_reach.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

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
  for (std::size_t day = 0; day < programs.size(); ++day) row.set(dailyColumn(day), programs[day]);
  if (texts.holidays) row.set(dailyColumn(holidaysPlace), numbers.of(*texts.holidays));
  return !programs.empty() || texts.holidays;
}

/// The rows of weekly programs, with the daily programs that they name.
class WeekRows {
 public:
  explicit WeekRows(Installation& installation) {
    for (DailyProgramRow& program : listDailyPrograms(installation)) {
      dailies_[program.id] = std::move(program);
    }
  }

  [[nodiscard]] WeeklyProgramRow of(const Recordset& row) const {
    WeeklyProgramRow program;
    program.family = row.get("ProgType").toText();
    program.number = row.get("ProgNum").toInt16();
    program.name = row.get("Name").toText();
    for (std::size_t place = 0; place < weekPlaces; ++place) {
      program.week.at(place) = daily(nullToInt(row.get(dailyColumn(place))));
    }
    program.toSend = row.get("WeeklyProgramFlagD").toBool();
    return program;
  }

 private:
  [[nodiscard]] DailyProgramRow daily(std::int16_t id) const {
    const auto known = dailies_.find(id);
    return known != dailies_.end() ? known->second : DailyProgramRow{id, std::to_string(id), {}, false};
  }

  std::map<std::int16_t, DailyProgramRow> dailies_;
};

/// Puts another program in the place of one, at doors that groups open by it and at readers that have it.
MovedDoors moveDoors(Installation& installation, const Recordset& from, WeeklyUses uses, std::int16_t to) {
  Database& database = installation.database();
  const std::pair<std::string, Value> program[] = {{"pFamily", from.get("ProgType")},
                                                   {"pNumber", from.get("ProgNum")}};
  const auto links = database.openRecordset(
      "parameters pFamily memo, pNumber long; select * from AccGroupReaders where WeeklyProgType = pFamily "
      "and WeeklyProgNum = pNumber",
      {std::begin(program), std::end(program)});
  std::map<std::int16_t, GroupRow> before;
  for (const WeeklyUse& use : uses.groups) before[use.group] = findGroup(installation, use.name);
  for (; !links->eof(); links->moveNext()) {
    links->edit();
    links->set("WeeklyProgNum", to);
    links->set("FlagD", before.at(links->get("AccessGroupId").toInt16()).cards > 0);
    links->update();
  }
  (void)database.execute(
      "parameters pTo long, pFamily memo, pNumber long; update Readers set WeeklyProgNum = pTo where "
      "WeeklyProgType = pFamily and WeeklyProgNum = pNumber",
      {{"pTo", to}, program[0], program[1]});
  MovedDoors moved{std::move(uses), {}};
  for (const WeeklyUse& use : moved.uses.groups) {
    markGroup(installation, use.group);
    for (const std::string& door : openedSince(before.at(use.group), findGroup(installation, use.name))) {
      moved.beside.push_back("access group " + use.name + ": " + door + " opens now, and stayed shut before");
    }
    for (const DoorsBesideLinks& beside : doorsBesideLinks(database, use.group)) {
      if (!beside.shut.empty()) moved.beside.push_back(beside.shut);
      if (!beside.otherSide.empty()) moved.beside.push_back(beside.otherSide);
    }
  }
  return moved;
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
  if (setDays(installation, *row, texts)) {
    if (row->get("ProgNum").toInt16() == 0)
      throw Refusal("the days of the built-in program 0 (always) are fixed");
    row->set("WeeklyProgramFlagD", true);
  }
  storeRow(installation, *row, "WeeklyPrograms", "weekly program");
}

MovedDoors deleteWeeklyProgram(Installation& installation, const std::string& family,
                               const std::string& numberOrName, const std::string& moveTo) {
  requireFamily(family);
  Transaction transaction(installation.engine(), installation.database());
  const auto row = weeklyProgramNamed(installation, family, numberOrName);
  const std::int16_t number = row->get("ProgNum").toInt16();
  if (number == 0) throw Refusal("the built-in program 0 (always) stays");
  MovedDoors moved{usesOfWeeklyProgram(installation, family, number), {}};
  if (!moved.uses.empty()) {
    const std::string what =
        "weekly program " + family + std::to_string(number) + " (" + row->get("Name").toText() + ")";
    if (moveTo.empty()) throw Refusal(inUse(what, textsOf(moved.uses)));
    const std::int16_t target = weeklyProgramNamed(installation, family, moveTo)->get("ProgNum").toInt16();
    if (target == number) throw Refusal(what + " cannot take its own place");
    moved = moveDoors(installation, *row, std::move(moved.uses), target);
  }
  row->remove();
  transaction.commit();
  return moved;
}

WeeklyProgramRow findWeeklyProgram(Installation& installation, const std::string& family,
                                   const std::string& numberOrName) {
  requireFamily(family);
  return WeekRows(installation).of(*weeklyProgramNamed(installation, family, numberOrName));
}

std::vector<WeeklyProgramRow> listWeeklyPrograms(Installation& installation) {
  const WeekRows weeks(installation);
  std::vector<WeeklyProgramRow> programs;
  const auto rows =
      installation.database().openRecordset("select * from WeeklyPrograms order by ProgType, ProgNum");
  for (; !rows->eof(); rows->moveNext()) programs.push_back(weeks.of(*rows));
  return programs;
}

std::string WeeklyProgramRow::weekText() const {
  std::string text;
  for (std::size_t first = 0; first < weekPlaces; ++first) {
    WeekPlaces same;
    same.set(first);
    while (first + 1 < daysAWeek && week.at(first + 1).id == week.at(first).id) same.set(++first);
    const DailyProgramRow& program = week.at(first);
    text += (text.empty() ? "" : ", ") + placesText(same) + " " + program.name;
    for (const std::string& hours : program.hours()) text += " " + hours;
  }
  return text;
}

}  // namespace voxa
