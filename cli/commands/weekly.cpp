// voxa weekly: the daily program of each day of the week.

#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>

#include "app/qdb.h"
#include "commands.h"
#include "component.h"
#include "output/table_output.h"
#include "programs/weekly_program.h"
#include "session.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

constexpr std::size_t daysAWeek = 7;

struct WeeklyOptions {
  std::string name;
  std::string family = "C";
  std::optional<std::string> newName, days, holidays;
};

std::string dayColumn(std::size_t day) {
  return "DailyProgDay" + std::to_string(day + 1);
}

std::int16_t dailyProgram(Session& session, const std::string& numberOrName) {
  const auto rows = session.rows("select Id, Name from DailyPrograms");
  moveToNumberOrName(*rows, "Id", numberOrName, "msgCantFindDailyProg");
  return rows->get("Id").toInt16();
}

std::vector<std::int16_t> dayPrograms(Session& session, const std::string& list) {
  std::vector<std::int16_t> programs;
  std::istringstream items(list + ",");
  for (std::string item; std::getline(items, item, ',');) {
    programs.push_back(dailyProgram(session, CLI::detail::trim_copy(item)));
  }
  if (programs.size() == 1) programs.assign(daysAWeek, programs.front());
  if (programs.size() == daysAWeek) return programs;
  throw Refusal("--days takes one daily program for all days or seven, Monday first, not " +
                std::to_string(programs.size()));
}

bool setDays(Session& session, Recordset& row, const WeeklyOptions& options) {
  if (options.days) {
    const auto programs = dayPrograms(session, *options.days);
    for (std::size_t day = 0; day < daysAWeek; ++day) row.set(dayColumn(day), programs[day]);
  }
  if (options.holidays) row.set("DailyProgHolidays", dailyProgram(session, *options.holidays));
  return options.days || options.holidays;
}

void addWeekly(Session& session, const WeeklyOptions& options) {
  session.open();
  const std::int16_t number = session.qdb().WeeklyPrograms().getFreeId(options.family);
  if (number == -1) throw Refusal("family " + options.family + " holds all the programs it can (31)");
  const auto rows = session.rows("select * from WeeklyPrograms");
  rows->addNew();
  rows->set("ProgType", options.family);
  rows->set("ProgNum", number);
  rows->set("Name", checkedName(options.name));
  setDays(session, *rows, options);
  rows->set("WeeklyProgramFlagD", true);
  storeRow(session.library(), *rows, "WeeklyPrograms", "weekly program");
  std::cout << "Weekly program " << options.family << number << ": " << options.name << '\n';
}

void setWeekly(Session& session, const WeeklyOptions& options) {
  session.open();
  const auto row = session.rows("select * from WeeklyPrograms where ProgType = '" + options.family + "'");
  moveToNumberOrName(*row, "ProgNum", options.name, "msgCantFindWeeklyProg");
  row->edit();
  if (options.newName) row->set("Name", checkedName(*options.newName));
  if (setDays(session, *row, options) && row->get("ProgNum").toInt16() == 0) {
    throw Refusal("the days of the built-in program 0 (always) are fixed");
  }
  row->set("WeeklyProgramFlagD", true);
  storeRow(session.library(), *row, "WeeklyPrograms", "weekly program");
}

void listWeekly(Session& session, bool json) {
  session.open();
  TableOutput table(
      {"Family", "Number", "Name", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun", "Holidays", "ToSend"});
  const auto rows = session.rows("select * from WeeklyPrograms order by ProgType, ProgNum");
  for (; !rows->eof(); rows->moveNext()) {
    std::vector<Value> cells = {rows->get("ProgType"), rows->get("ProgNum"), rows->get("Name")};
    for (std::size_t day = 0; day < daysAWeek; ++day) cells.push_back(rows->get(dayColumn(day)));
    cells.push_back(rows->get("DailyProgHolidays"));
    cells.push_back(rows->get("WeeklyProgramFlagD"));
    table.add(std::move(cells));
  }
  table.print(std::cout, json);
}

void addProgramOptions(CLI::App& command, WeeklyOptions& options) {
  command.add_option("--family", options.family, "Family of the program: C or E")
      ->transform(CLI::IsMember({"C", "E"}, CLI::ignore_case))
      ->capture_default_str();
  command.add_option(
      "--days", options.days,
      "Daily programs of Monday to Sunday, by number or name, separated by commas; one for all");
  command.add_option("--holidays", options.holidays, "Daily program of holidays");
}

}  // namespace

void addWeeklyCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("weekly", "Weekly programs")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a weekly program");
  auto added = std::make_shared<WeeklyOptions>();
  add->add_option("NAME", added->name, "Name of the new program")->required();
  addProgramOptions(*add, *added);
  add->get_option("--days")->required();
  add->get_option("--holidays")->required();
  add->footer(
      "Example:\n  voxa weekly add Staff --days Office,Office,Office,Office,Office,Never,Never "
      "--holidays Never");
  add->callback([&session, added] { addWeekly(session, *added); });

  auto* list = group->add_subcommand("list", "List the weekly programs");
  auto json = std::make_shared<bool>(false);
  list->add_flag("--json", *json, "As a JSON array");
  list->footer("Example:\n  voxa weekly list");
  list->callback([&session, json] { listWeekly(session, *json); });

  auto* set = group->add_subcommand("set", "Change a weekly program; it is to be sent again then");
  auto changed = std::make_shared<WeeklyOptions>();
  set->add_option("PROGRAM", changed->name, "Number or name of the program")->required();
  set->add_option("--name", changed->newName, "Its new name");
  addProgramOptions(*set, *changed);
  set->footer("Example:\n  voxa weekly set Staff --days Office --holidays Never");
  set->callback([&session, changed] { setWeekly(session, *changed); });
}

}  // namespace voxa::cli
