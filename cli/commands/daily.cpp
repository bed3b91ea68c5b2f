// voxa daily: the intervals of a day.

#include <iostream>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "thing_commands.h"
#include "work/daily_programs.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

constexpr const char* options[mostIntervals] = {"--first", "--second", "--third", "--fourth"};
constexpr const char* titles[mostIntervals] = {"First", "Second", "Third", "Fourth"};

nlohmann::ordered_json jsonOf(const DailyUse& use) {
  auto days = nlohmann::ordered_json::array();
  for (std::size_t place = 0; place < weekPlaces; ++place) {
    if (use.places[place]) days.push_back(placeName(place));
  }
  return {{"Family", use.family}, {"Number", use.number}, {"Name", use.name}, {"Days", days}};
}

void addDaily(Session& session, const DailyProgramTexts& texts) {
  session.open();
  const std::int16_t id = addDailyProgram(session.library(), texts);
  std::cout << "Daily program " << id << ": " << *texts.name << '\n';
}

void listDaily(Session& session, bool json) {
  session.open();
  const auto programs = listDailyPrograms(session.library());
  std::vector<std::string> columns = {"Id", "Name"};
  const std::size_t intervals = programs.empty() ? 0 : programs.front().intervals.size();
  for (std::size_t i = 0; i < intervals; ++i) columns.emplace_back(titles[i]);
  columns.emplace_back("ToSend");
  TableOutput table(columns);
  for (const DailyProgramRow& program : programs) {
    std::vector<Cell> cells = {program.id, program.name};
    cells.insert(cells.end(), program.intervals.begin(), program.intervals.end());
    cells.emplace_back(program.toSend);
    table.add(std::move(cells));
  }
  table.print(std::cout, json);
}

void showDaily(Session& session, const std::string& name, bool json) {
  const DailyProgramRow program = findDailyProgram(session.library(), name);
  const auto uses = usesOfDailyProgram(session.library(), program.id);
  auto used = nlohmann::ordered_json::array();
  for (const DailyUse& use : uses) used.push_back(jsonOf(use));
  printOne(std::cout, {"Id", "Name", "Intervals", "ToSend", "Used by"},
           {program.id, program.name, program.hours(), program.toSend, eachBelow(textsOf(uses), used)}, json);
}

void deleteDaily(Session& session, const std::string& name, const std::string& moveTo) {
  session.open();
  const DailyProgramRow program = findDailyProgram(session.library(), name);
  const auto moved = deleteDailyProgram(session.library(), name, moveTo);
  std::cout << "Deleted: daily program " << program.id << " (" << program.name << ")\n";
  if (moved.empty()) return;
  std::cout << findDailyProgram(session.library(), moveTo).name
            << " has its place in:" << eachOnALine(textsOf(moved)) << '\n';
}

void addIntervalOptions(Command& command, DailyProgramTexts& texts) {
  constexpr const char* help[mostIntervals] = {"First interval, as 08:00-12:00, or none", "Second interval",
                                               "Third interval (with --four-zones)",
                                               "Fourth interval (with --four-zones)"};
  for (std::size_t i = 0; i < mostIntervals; ++i) {
    command.add_option(options[i], texts.intervals[i], help[i]);
  }
}

}  // namespace

void addDailyCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("daily", "Daily programs")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a daily program");
  auto added = std::make_shared<DailyProgramTexts>();
  add->add_option("NAME", added->name, "Name of the new program")->required();
  addIntervalOptions(*add, *added);
  add->get_option("--first")->required();
  add->footer(
      "Examples:\n  voxa daily add Office --first 08:00-12:00 --second 13:00-17:00\n"
      "  voxa daily add \"Cleaning hours\" --first 18:00-22:30");
  add->callback([&session, added] { addDaily(session, *added); });

  addListCommand(*group, session, "list", "List the daily programs", "voxa daily list", listDaily);
  addShowCommand(*group, session, "PROGRAM", "daily program",
                 "Examples:\n  voxa daily show Office\n  voxa daily show 2 --json",
                 [&session](const std::string& name, bool json) { showDaily(session, name, json); });

  auto* set = group->add_subcommand("set", "Change a daily program; it is to be sent again then");
  auto program = std::make_shared<std::string>();
  auto changed = std::make_shared<DailyProgramTexts>();
  set->add_option("PROGRAM", *program, "Number or name of the program")->required();
  set->add_option("--name", changed->name, "Its new name");
  addIntervalOptions(*set, *changed);
  set->footer(
      "Examples:\n  voxa daily set Office --second 13:00-18:00\n  voxa daily set Office --second none");
  set->callback([&session, program, changed] {
    session.open();
    changeDailyProgram(session.library(), *program, *changed);
  });

  addRenameCommand(*group, session, "PROGRAM", "daily program",
                   "Examples:\n  voxa daily rename Office \"Office hours\"\n  voxa daily rename 3 Weekend",
                   [&session](const std::string& name, const std::string& newName) {
                     changeDailyProgram(session.library(), name, {.name = newName});
                   });
  addDeleteCommand(
      *group, "PROGRAM", "daily program", "--move-to",
      "Daily program that takes its place in the weekly programs",
      "The weekly programs are to be sent again then.\nExamples:\n  voxa daily delete Weekend\n"
      "  voxa daily delete Office --move-to \"Summer hours\"",
      [&session](const std::string& name, const std::string& moveTo) { deleteDaily(session, name, moveTo); });
}

}  // namespace voxa::cli
