// voxa daily: the intervals of a day.

#include <iostream>

#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/daily_programs.h"

namespace voxa::cli {

namespace {

constexpr const char* options[mostIntervals] = {"--first", "--second", "--third", "--fourth"};
constexpr const char* titles[mostIntervals] = {"First", "Second", "Third", "Fourth"};

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
  add->footer("Example:\n  voxa daily add Office --first 08:00-12:00 --second 13:00-17:00");
  add->callback([&session, added] { addDaily(session, *added); });

  addListCommand(*group, session, "list", "List the daily programs", "voxa daily list", listDaily);

  auto* set = group->add_subcommand("set", "Change a daily program; it is to be sent again then");
  auto program = std::make_shared<std::string>();
  auto changed = std::make_shared<DailyProgramTexts>();
  set->add_option("PROGRAM", *program, "Number or name of the program")->required();
  set->add_option("--name", changed->name, "Its new name");
  addIntervalOptions(*set, *changed);
  set->footer("Example:\n  voxa daily set Office --second 13:00-18:00");
  set->callback([&session, program, changed] {
    session.open();
    changeDailyProgram(session.library(), *program, *changed);
  });
}

}  // namespace voxa::cli
