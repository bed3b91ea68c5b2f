// voxa weekly: the daily program of each day of the week.

#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>

#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "platform/text.h"
#include "session.h"
#include "thing_commands.h"
#include "work/refusal.h"
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

nlohmann::ordered_json jsonOf(const DailyProgramRow& program) {
  return {{"Id", program.id}, {"Name", program.name}, {"Intervals", program.hours()}};
}

/// "Office 08:00-12:00 13:00-18:00".
std::string textOf(const DailyProgramRow& program) {
  std::string text = program.name;
  for (const std::string& hours : program.hours()) text += " " + hours;
  return text;
}

/// One thing for each place of the week.
std::vector<std::string> placeColumns() {
  std::vector<std::string> columns;
  for (std::size_t day = 0; day < daysAWeek; ++day) columns.push_back(placeName(day));
  columns.emplace_back("Holidays");
  return columns;
}

void addWeek(std::vector<Cell>& cells, const WeeklyProgramRow& program) {
  for (const DailyProgramRow& daily : program.week) cells.emplace_back(textOf(daily), jsonOf(daily));
}

// A person gets the days in one column, equal ones joined.
void listWeekly(Session& session, bool json) {
  session.open();
  std::vector<std::string> columns = {"Family", "Number", "Name"};
  const std::vector<std::string> week = json ? placeColumns() : std::vector<std::string>{"Week"};
  columns.insert(columns.end(), week.begin(), week.end());
  columns.emplace_back("ToSend");
  TableOutput table(columns);
  for (const WeeklyProgramRow& program : listWeeklyPrograms(session.library())) {
    std::vector<Cell> cells = {program.family, program.number, program.name};
    if (json) {
      addWeek(cells, program);
    } else {
      cells.emplace_back(program.weekText());
    }
    cells.emplace_back(program.toSend);
    table.add(std::move(cells));
  }
  table.print(std::cout, json);
}

nlohmann::ordered_json jsonOf(const WeeklyUses& uses) {
  auto groups = nlohmann::ordered_json::array();
  for (const WeeklyUse& use : uses.groups) {
    groups.push_back({{"Id", use.group}, {"Name", use.name}, {"Doors", use.readers}});
  }
  return {{"Groups", groups}, {"DoorsThemselves", uses.readers}};
}

void showWeekly(Session& session, const std::string& family, const std::string& name, bool json) {
  const WeeklyProgramRow program = findWeeklyProgram(session.library(), family, name);
  const WeeklyUses uses = usesOfWeeklyProgram(session.library(), program.family, program.number);
  std::vector<std::string> columns = {"Family", "Number", "Name"};
  const std::vector<std::string> week = placeColumns();
  columns.insert(columns.end(), week.begin(), week.end());
  columns.insert(columns.end(), {"ToSend", "Used by"});
  std::vector<Cell> cells = {program.family, program.number, program.name};
  addWeek(cells, program);
  cells.emplace_back(program.toSend);
  cells.push_back(eachBelow(textsOf(uses), jsonOf(uses)));
  printOne(std::cout, columns, cells, json);
}

void deleteWeekly(Session& session, const std::string& family, const std::string& name,
                  const std::string& moveTo) {
  session.open();
  const WeeklyProgramRow program = findWeeklyProgram(session.library(), family, name);
  const MovedDoors moved = deleteWeeklyProgram(session.library(), family, name, moveTo);
  std::cout << "Deleted: weekly program " << program.family << program.number << " (" << program.name
            << ")\n";
  if (moved.uses.empty()) return;
  const WeeklyProgramRow target = findWeeklyProgram(session.library(), family, moveTo);
  std::cout << "By " << target.name << " (" << target.weekText()
            << ") from now on:" << eachOnALine(textsOf(moved.uses)) << '\n';
  for (const std::string& text : moved.beside) std::cerr << "Mind: " << text << '\n';
}

void addFamilyOption(Command& command, std::string& family) {
  command.add_option("--family", family, "Family of the program: C or E")
      ->isMemberInAnyCase({"C", "E"})
      ->capture_default_str();
}

void addProgramOptions(Command& command, WeeklyOptions& options) {
  addFamilyOption(command, options.family);
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
      "Examples:\n  voxa weekly add Staff --days Office,Office,Office,Office,Office,Never,Never "
      "--holidays Never\n  voxa weekly add Guards --days Anytime --holidays Anytime");
  add->callback([&session, added] { addWeekly(session, *added); });

  addListCommand(*group, session, "list", "List the weekly programs, with the hours of their days",
                 "voxa weekly list", listWeekly);

  auto family = std::make_shared<std::string>("C");
  auto* show = addShowCommand(
      *group, session, "PROGRAM", "weekly program",
      "Examples:\n  voxa weekly show Staff\n  voxa weekly show 1 --family E --json",
      [&session, family](const std::string& name, bool json) { showWeekly(session, *family, name, json); });
  addFamilyOption(*show, *family);

  auto* set = group->add_subcommand("set", "Change a weekly program; it is to be sent again then");
  auto changed = std::make_shared<WeeklyOptions>();
  set->add_option("PROGRAM", changed->program, "Number or name of the program")->required();
  set->add_option("--name", changed->texts.name, "Its new name");
  addProgramOptions(*set, *changed);
  set->footer(
      "Examples:\n  voxa weekly set Staff --days Office --holidays Never\n"
      "  voxa weekly set Staff --holidays \"Short day\"");
  set->callback([&session, changed] {
    session.open();
    changeWeeklyProgram(session.library(), changed->family, changed->program, changed->read());
  });

  auto* rename =
      addRenameCommand(*group, session, "PROGRAM", "weekly program",
                       "Examples:\n  voxa weekly rename Staff \"Office staff\"\n  voxa weekly rename 3 Night",
                       [&session, family](const std::string& name, const std::string& newName) {
                         changeWeeklyProgram(session.library(), *family, name, {.name = newName});
                       });
  addFamilyOption(*rename, *family);

  auto* remove = addDeleteCommand(
      *group, "PROGRAM", "weekly program", "--move-to", "Weekly program by which its doors open from now on",
      "Its cards are to be sent again then.\nExamples:\n  voxa weekly delete Night\n"
      "  voxa weekly delete Summer --move-to Staff",
      [&session, family](const std::string& name, const std::string& moveTo) {
        deleteWeekly(session, *family, name, moveTo);
      });
  addFamilyOption(*remove, *family);
}

}  // namespace voxa::cli
