// voxa lift: the lift outputs of controllers, and the access groups that may use them.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

#include "app/qdb.h"
#include "commands.h"
#include "component.h"
#include "output/table_output.h"
#include "session.h"
#include "work/card_values.h"
#include "work/forget_cards.h"
#include "work/group_reach.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct LiftOptions {
  std::string name, station, address, number, group;
};

// Behind the command 37 an output has two digits.
constexpr std::int16_t lastOutput = 99;

void addLift(Session& session, const LiftOptions& options) {
  session.open();
  const std::int16_t station = stationNamed(session.library(), options.station)->get("Id").toInt16();
  std::int32_t id = 1;
  const auto alarms = session.rows("select * from Alarms order by Id");
  for (; !alarms->eof() && alarms->get("Id").toInt32() == id; alarms->moveNext()) ++id;
  alarms->addNew();
  alarms->set("Id", id);
  alarms->set("Num", numberWithin("the output", options.number, 1, lastOutput));
  alarms->set("Type", "M");
  alarms->set("Name", checkedName(options.name));
  alarms->set("StationId", station);
  alarms->set("ControllerAddress", numberWithin("the controller's address", options.address, 1, 16));
  storeRow(session.library(), *alarms, "Alarms", "lift output");
  std::cout << "Lift output " << id << ": " << options.name << '\n';
}

void listLifts(Session& session, bool json) {
  session.open();
  const GroupNames names(session.library());
  TableOutput table({"Id", "Name", "Station", "Address", "Output", "Groups"});
  const auto rows = session.rows(
      "select Alarms.Id, Alarms.Name as Lift, Stations.Name as Station, ControllerAddress, Num from Alarms "
      "inner join Stations on Alarms.StationId = Stations.Id where Alarms.Type = 'M' order by Alarms.Id");
  for (; !rows->eof(); rows->moveNext()) {
    std::string groups;
    const auto granted =
        session.rows("select AccessGroup from LiftGroup where LiftNum = " + rows->get("Id").toText() +
                     " order by AccessGroup");
    for (; !granted->eof(); granted->moveNext()) {
      groups += (groups.empty() ? "" : ", ") + names.name(granted->get("AccessGroup").toInt16());
    }
    table.add({rows->get("Id"), rows->get("Lift"), rows->get("Station"), rows->get("ControllerAddress"),
               rows->get("Num"), groups});
  }
  table.print(std::cout, json);
}

struct GroupLift {
  std::int16_t group = 0;
  std::unique_ptr<Recordset> lift;            // its row of Alarms
  std::unique_ptr<Recordset> granting;        // its row of LiftGroup, or none
  std::vector<GrantedController> controller;  // the lift's, when the group has a door there
};

GroupLift groupLift(Session& session, const LiftOptions& options) {
  GroupLift found;
  found.group = GroupNames(session.library()).id(options.group);
  found.lift = session.rows("select * from Alarms where Type = 'M'");
  if (!moveToName(*found.lift, options.name)) throw Refusal("msgCantFindAlarm", options.name);
  found.granting = session.rows("select * from LiftGroup where AccessGroup = " + std::to_string(found.group) +
                                " and LiftNum = " + found.lift->get("Id").toText());
  for (const ReachedController& reached : reachOf(session.library(), found.group)) {
    if (reached.controller.station == found.lift->get("StationId").toInt16() &&
        reached.controller.address == found.lift->get("ControllerAddress").toInt16()) {
      found.controller.push_back(reached.controller);
    }
  }
  return found;
}

void grantLift(Session& session, const LiftOptions& options) {
  session.openForSending();
  const GroupLift found = groupLift(session, options);
  if (!found.granting->eof()) return;
  Transaction transaction(session.library().engine(), session.qdb().database());
  found.granting->addNew();
  found.granting->set("AccessGroup", found.group);
  found.granting->set("LiftNum", found.lift->get("Id"));
  found.granting->update();
  if (!found.controller.empty()) markGroup(session.library(), found.group);
  transaction.commit();
  if (found.controller.empty()) {
    std::cerr << "The group opens no door of that controller yet, which therefore does not know its cards.\n";
  }
}

void revokeLift(Session& session, const LiftOptions& options) {
  session.openForSending();
  const GroupLift found = groupLift(session, options);
  if (found.granting->eof()) {
    throw Refusal("the access group " + options.group + " may not use " + options.name);
  }
  // A card's line adds an output; only erasing the card takes one away.
  ForgetCards forget(session.library());
  forget.on(found.controller, cardsOf(session.library(), found.group).live);
  forget.send();
  Transaction transaction(session.library().engine(), session.qdb().database());
  found.granting->remove();
  if (!found.controller.empty()) markGroup(session.library(), found.group);
  transaction.commit();
}

void addGroupLiftOptions(CLI::App& command, LiftOptions& options) {
  command.add_option("GROUP", options.group, "Name or number of the access group")->required();
  command.add_option("LIFT", options.name, "Name of the lift output")->required();
}

}  // namespace

void addLiftCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("lift", "Lift outputs")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a lift output");
  auto added = std::make_shared<LiftOptions>();
  add->add_option("NAME", added->name, "Name of the new output")->required();
  add->add_option("--station", added->station, "Station of its controller")->required();
  add->add_option("--address", added->address, "Address of its controller on the line, 1 to 16")->required();
  add->add_option("--num", added->number, "Its number on the controller, 1 to 99")->required();
  add->footer("Example:\n  voxa lift add \"Third floor\" --station Local --address 1 --num 3");
  add->callback([&session, added] { addLift(session, *added); });

  auto* list = group->add_subcommand("list", "List the lift outputs and the groups that may use them");
  auto json = std::make_shared<bool>(false);
  list->add_flag("--json", *json, "As a JSON array");
  list->footer("Example:\n  voxa lift list");
  list->callback([&session, json] { listLifts(session, *json); });

  auto* granting = group->add_subcommand("grant", "Let an access group use a lift output");
  auto granted = std::make_shared<LiftOptions>();
  addGroupLiftOptions(*granting, *granted);
  granting->footer("Example:\n  voxa lift grant Staff \"Third floor\"");
  granting->callback([&session, granted] { grantLift(session, *granted); });

  auto* revoking = group->add_subcommand("revoke", "Take a lift output away from an access group");
  auto revoked = std::make_shared<LiftOptions>();
  addGroupLiftOptions(*revoking, *revoked);
  revoking->footer(
      "Its controller erases the group's cards at once, and has to answer; the next download gives them "
      "back.\n"
      "Example:\n  voxa lift revoke Staff \"Third floor\"");
  revoking->callback([&session, revoked] { revokeLift(session, *revoked); });
}

}  // namespace voxa::cli
