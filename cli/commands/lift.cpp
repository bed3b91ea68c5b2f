// voxa lift: the lift outputs of controllers, and the access groups that may use them.

#include <iostream>

#include "changed_doors.h"
#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/lifts.h"

namespace voxa::cli {

namespace {

struct GrantOptions {
  std::string group, lift;
};

void add(Session& session, const LiftTexts& lift) {
  session.open();
  const std::int32_t id = addLift(session.library(), lift);
  std::cout << "Lift output " << id << ": " << lift.name << '\n';
}

const std::vector<std::string> columns = {"Id", "Name", "Station", "Address", "Output", "Groups"};

std::vector<Cell> cellsOf(const LiftRow& lift) {
  return {lift.id, lift.name, lift.station, lift.address, lift.number, lift.groups};
}

void list(Session& session, bool json) {
  session.open();
  TableOutput table(columns);
  for (const LiftRow& lift : listLifts(session.library())) table.add(cellsOf(lift));
  table.print(std::cout, json);
}

struct ChangeOptions {
  std::string lift, moveTo;
  AlarmTexts change;
  bool gone = false;
};

void addChanging(Command& group, Session& session) {
  const char* const gone = "Its controller is gone for good: it is not asked to erase its cards";
  auto* showing = group.add_subcommand("show", "Show a lift output");
  auto shown = std::make_shared<std::pair<std::string, bool>>();
  showing->add_option("NAME", shown->first, "Name or number of the lift output")->required();
  showing->add_flag("--json", shown->second, "As a JSON object");
  showing->footer("Examples:\n  voxa lift show \"Third floor\"\n  voxa lift show 1 --json");
  showing->callback([&session, shown] {
    session.open();
    printOne(std::cout, columns, cellsOf(findLift(session.library(), shown->first)), shown->second);
  });

  auto* rename = group.add_subcommand("rename", "Give a lift output another name");
  auto renamed = std::make_shared<ChangeOptions>();
  rename->add_option("NAME", renamed->lift, "Name or number of the lift output")->required();
  rename->add_option("NEW", renamed->change.name, "Its new name")->required();
  rename->footer("Examples:\n  voxa lift rename \"Third floor\" Canteen\n  voxa lift rename 1 Roof");
  rename->callback([&session, renamed] {
    session.openForSending();
    (void)changeLift(session.library(), renamed->lift, renamed->change);
  });

  auto* set = group.add_subcommand("set", "Change where a lift output is");
  auto changed = std::make_shared<ChangeOptions>();
  set->add_option("NAME", changed->lift, "Name or number of the lift output")->required();
  set->add_option("--station", changed->change.station, "Station of its controller");
  set->add_option("--address", changed->change.address, "Address of its controller on the line, 1 to 16");
  set->add_option("--num,--number", changed->change.number, "Its number on the controller, 1 to 99");
  set->add_flag("--gone", changed->gone, gone);
  set->footer(
      "The controller erases the cards that may use it at once, and has to answer; the next download gives "
      "them back.\n"
      "Examples:\n  voxa lift set \"Third floor\" --num 4\n  voxa lift set Roof --station Annex --address 5");
  set->callback([&session, changed] {
    session.openForSending();
    showChangedDoors(session, changeLift(session.library(), changed->lift, changed->change, changed->gone));
  });

  auto* deleting = group.add_subcommand("delete", "Delete a lift output");
  auto deleted = std::make_shared<ChangeOptions>();
  deleting->add_option("NAME", deleted->lift, "Name or number of the lift output")->required();
  deleting->add_option("--move-to", deleted->moveTo, "The output that its access groups may use instead");
  deleting->add_flag("--gone", deleted->gone, gone);
  deleting->footer(
      "Its controller erases the cards that may use it at once, and has to answer.\n"
      "Examples:\n  voxa lift delete \"Third floor\"\n  voxa lift delete Roof --move-to Canteen");
  deleting->callback([&session, deleted] {
    session.openForSending();
    showChangedDoors(session, deleteLift(session.library(), deleted->lift, deleted->moveTo, deleted->gone));
  });
}

void grant(Session& session, const GrantOptions& options) {
  session.openForSending();
  if (grantLift(session.library(), options.group, options.lift)) return;
  std::cerr << "The group opens no door of that controller yet, which therefore does not know its cards.\n";
}

void revoke(Session& session, const GrantOptions& options) {
  session.openForSending();
  revokeLift(session.library(), options.group, options.lift);
  std::cout << "Its controller has erased the group's cards: 'voxa download' gives them back\n";
}

void addGroupLiftOptions(Command& command, GrantOptions& options) {
  command.add_option("GROUP", options.group, "Name or number of the access group")->required();
  command.add_option("LIFT", options.lift, "Name or number of the lift output")->required();
}

}  // namespace

void addLiftCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("lift", "Lift outputs")->require_subcommand(1);

  auto* adding = group->add_subcommand("add", "Add a lift output");
  auto added = std::make_shared<LiftTexts>();
  adding->add_option("NAME", added->name, "Name of the new output")->required();
  adding->add_option("--station", added->station, "Station of its controller")->required();
  adding->add_option("--address", added->address, "Address of its controller on the line, 1 to 16")
      ->required();
  adding->add_option("--num,--number", added->number, "Its number on the controller, 1 to 99")->required();
  adding->footer(
      "Examples:\n  voxa lift add \"Third floor\" --station Local --address 1 --num 3\n"
      "  voxa lift add Roof --station Annex --address 5 --num 9");
  adding->callback([&session, added] { add(session, *added); });

  addListCommand(*group, session, "list", "List the lift outputs and the groups that may use them",
                 "voxa lift list", list);

  addChanging(*group, session);

  auto* granting = group->add_subcommand("grant", "Let an access group use a lift output");
  auto granted = std::make_shared<GrantOptions>();
  addGroupLiftOptions(*granting, *granted);
  granting->footer("Examples:\n  voxa lift grant Employees \"Third floor\"\n  voxa lift grant Cleaners Roof");
  granting->callback([&session, granted] { grant(session, *granted); });

  auto* revoking = group->add_subcommand("revoke", "Take a lift output away from an access group");
  auto revoked = std::make_shared<GrantOptions>();
  addGroupLiftOptions(*revoking, *revoked);
  revoking->footer(
      "Its controller erases the group's cards at once, and has to answer; the next download gives them "
      "back.\n"
      "Examples:\n  voxa lift revoke Employees \"Third floor\"\n  voxa lift revoke Cleaners Roof");
  revoking->callback([&session, revoked] { revoke(session, *revoked); });
}

}  // namespace voxa::cli
