// voxa lift: the lift outputs of controllers, and the access groups that may use them.

#include <iostream>

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

void list(Session& session, bool json) {
  session.open();
  TableOutput table({"Id", "Name", "Station", "Address", "Output", "Groups"});
  for (const LiftRow& lift : listLifts(session.library())) {
    std::string groups;
    for (const std::string& group : lift.groups) groups += (groups.empty() ? "" : ", ") + group;
    table.add({lift.id, lift.name, lift.station, lift.address, lift.number, groups});
  }
  table.print(std::cout, json);
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
  command.add_option("LIFT", options.lift, "Name of the lift output")->required();
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
  adding->add_option("--num", added->number, "Its number on the controller, 1 to 99")->required();
  adding->footer("Example:\n  voxa lift add \"Third floor\" --station Local --address 1 --num 3");
  adding->callback([&session, added] { add(session, *added); });

  addListCommand(*group, session, "list", "List the lift outputs and the groups that may use them",
                 "voxa lift list", list);

  auto* granting = group->add_subcommand("grant", "Let an access group use a lift output");
  auto granted = std::make_shared<GrantOptions>();
  addGroupLiftOptions(*granting, *granted);
  granting->footer("Example:\n  voxa lift grant Staff \"Third floor\"");
  granting->callback([&session, granted] { grant(session, *granted); });

  auto* revoking = group->add_subcommand("revoke", "Take a lift output away from an access group");
  auto revoked = std::make_shared<GrantOptions>();
  addGroupLiftOptions(*revoking, *revoked);
  revoking->footer(
      "Its controller erases the group's cards at once, and has to answer; the next download gives them "
      "back.\n"
      "Example:\n  voxa lift revoke Staff \"Third floor\"");
  revoking->callback([&session, revoked] { revoke(session, *revoked); });
}

}  // namespace voxa::cli
