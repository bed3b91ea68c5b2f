// voxa alarm: alarms, inputs and outputs of controllers. Lift outputs are in lift.cpp.

#include <iostream>

#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/alarms.h"

namespace voxa::cli {

namespace {

constexpr const char* kept = "Alarms are kept for other programs: this system sends no lines for them\n";

const std::vector<std::string> columns = {"Id", "Name", "Type", "Station", "Address", "Number", "Marked"};

std::vector<Cell> cellsOf(const AlarmRow& alarm) {
  return {alarm.id, alarm.name, alarm.type, alarm.station, alarm.address, alarm.number, alarm.marked};
}

void list(Session& session, bool json) {
  session.open();
  TableOutput table(columns);
  for (const AlarmRow& alarm : listAlarms(session.library())) table.add(cellsOf(alarm));
  table.print(std::cout, json);
  if (!json && !table.empty()) std::cout << kept;
}

struct AlarmOptions {
  std::string alarm;
  AlarmTexts texts;
};

void addFields(Command& command, AlarmTexts& texts, bool required) {
  const auto add = [&](const char* name, std::optional<std::string>& text, const char* help) {
    auto* option = command.add_option(name, text, help);
    if (required) option->required();
  };
  add("--type", texts.type, "What it is, a letter; M are lift outputs: 'voxa lift'");
  add("--station", texts.station, "Station of its controller");
  add("--address", texts.address, "Address of its controller on the line, 1 to 16");
  add("--num,--number", texts.number, "Its number on the controller, 1 to 99");
}

}  // namespace

void addAlarmCommands(Command& app, Session& session) {
  auto* group =
      app.add_subcommand("alarm", "Alarms, inputs and outputs of controllers")->require_subcommand(1);

  auto* adding = group->add_subcommand("add", "Add an alarm");
  auto added = std::make_shared<AlarmOptions>();
  adding->add_option("NAME", added->texts.name, "Name of the new alarm")->required();
  addFields(*adding, added->texts, true);
  adding->footer(
      "Examples:\n  voxa alarm add \"Fire exit forced\" --type A --station Local --address 1 --num 1\n"
      "  voxa alarm add \"Siren\" --type S --station Local --address 1 --num 4");
  adding->callback([&session, added] {
    session.open();
    const std::int32_t id = addAlarm(session.library(), added->texts);
    std::cout << "Alarm " << id << ": " << *added->texts.name << '\n' << kept;
  });

  addListCommand(*group, session, "list", "List the alarms", "voxa alarm list", list);

  auto* showing = group->add_subcommand("show", "Show an alarm");
  auto shown = std::make_shared<std::pair<std::string, bool>>();
  showing->add_option("NAME", shown->first, "Name or number of the alarm")->required();
  showing->add_flag("--json", shown->second, "As a JSON object");
  showing->footer("Examples:\n  voxa alarm show \"Fire exit forced\"\n  voxa alarm show 2 --json");
  showing->callback([&session, shown] {
    session.open();
    printOne(std::cout, columns, cellsOf(findAlarm(session.library(), shown->first)), shown->second);
    if (!shown->second) std::cout << kept;
  });

  auto* set = group->add_subcommand("set", "Change an alarm");
  auto changed = std::make_shared<AlarmOptions>();
  set->add_option("NAME", changed->alarm, "Name or number of the alarm")->required();
  addFields(*set, changed->texts, false);
  set->footer("Examples:\n  voxa alarm set Siren --address 2\n  voxa alarm set 2 --type B --num 7");
  set->callback([&session, changed] {
    session.open();
    changeAlarm(session.library(), changed->alarm, changed->texts);
    std::cout << kept;
  });

  auto* rename = group->add_subcommand("rename", "Give an alarm another name");
  auto renamed = std::make_shared<AlarmOptions>();
  rename->add_option("NAME", renamed->alarm, "Name or number of the alarm")->required();
  rename->add_option("NEW", renamed->texts.name, "Its new name")->required();
  rename->footer("Examples:\n  voxa alarm rename Siren \"Siren, yard\"\n  voxa alarm rename 2 Siren");
  rename->callback([&session, renamed] {
    session.open();
    changeAlarm(session.library(), renamed->alarm, renamed->texts);
  });

  auto* deleting = group->add_subcommand("delete", "Delete an alarm");
  auto deleted = std::make_shared<std::string>();
  deleting->add_option("NAME", *deleted, "Name or number of the alarm")->required();
  deleting->footer("Examples:\n  voxa alarm delete Siren\n  voxa alarm delete 2");
  deleting->callback([&session, deleted] {
    session.open();
    deleteAlarm(session.library(), *deleted);
  });
}

}  // namespace voxa::cli
