// voxa weekly: the daily program of each day of the week.

#include <iostream>
#include <optional>

#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "platform/text.h"
#include "session.h"
#include "work/weekly_programs.h"

namespace voxa::cli {

namespace {

struct WeeklyOptions {
  std::string family = "C";
  std::string program;  // that is changed
  std::optional<std::string> days;
  WeeklyProgramTexts texts;

  [[nodiscard]] WeeklyProgramTexts read() const {
    WeeklyProgramTexts all = texts;
    if (!days) return all;
    std::istringstream items(*days + ",");
    for (std::string item; std::getline(items, item, ',');) all.days.push_back(trimmed(item));
    return all;
  }
};

void addWeekly(Session& session, const WeeklyOptions& options) {
  session.open();
  const std::int16_t number = addWeeklyProgram(session.library(), options.family, options.read());
  std::cout << "Weekly program " << options.family << number << ": " << *options.texts.name << '\n';
}

void listWeekly(Session& session, bool json) {
  session.open();
  TableOutput table(
      {"Family", "Number", "Name", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun", "Holidays", "ToSend"});
  for (const WeeklyProgramRow& program : listWeeklyPrograms(session.library())) {
    std::vector<Cell> cells = {program.family, program.number, program.name};
    cells.insert(cells.end(), program.days.begin(), program.days.end());
    cells.push_back(program.holidays);
    cells.emplace_back(program.toSend);
    table.add(std::move(cells));
  }
  table.print(std::cout, json);
}

void addProgramOptions(Command& command, WeeklyOptions& options) {
  command.add_option("--family", options.family, "Family of the program: C or E")
      ->isMemberInAnyCase({"C", "E"})
      ->capture_default_str();
  command.add_option(
      "--days", options.days,
      "Daily programs of Monday to Sunday, by number or name, separated by commas; one for all");
  command.add_option("--holidays", options.texts.holidays, "Daily program of holidays");
}

}  // namespace

void addWeeklyCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("weekly", "Weekly programs")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a weekly program");
  auto added = std::make_shared<WeeklyOptions>();
  add->add_option("NAME", added->texts.name, "Name of the new program")->required();
  addProgramOptions(*add, *added);
  add->get_option("--days")->required();
  add->get_option("--holidays")->required();
  add->footer(
      "Example:\n  voxa weekly add Staff --days Office,Office,Office,Office,Office,Never,Never "
      "--holidays Never");
  add->callback([&session, added] { addWeekly(session, *added); });

  addListCommand(*group, session, "list", "List the weekly programs", "voxa weekly list", listWeekly);

  auto* set = group->add_subcommand("set", "Change a weekly program; it is to be sent again then");
  auto changed = std::make_shared<WeeklyOptions>();
  set->add_option("PROGRAM", changed->program, "Number or name of the program")->required();
  set->add_option("--name", changed->texts.name, "Its new name");
  addProgramOptions(*set, *changed);
  set->footer("Example:\n  voxa weekly set Staff --days Office --holidays Never");
  set->callback([&session, changed] {
    session.open();
    changeWeeklyProgram(session.library(), changed->family, changed->program, changed->read());
  });
}

}  // namespace voxa::cli
