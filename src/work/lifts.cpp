#include "work/lifts.h"

#include <memory>

#include "platform/database/database.h"
#include "work/card_values.h"
#include "work/forget_cards.h"
#include "work/group_reach.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/readers.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/suggestions.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::int16_t lastOutput = 99;

struct GroupLift {
  std::int16_t group = 0;
  std::int32_t lift = 0;                      // its Id
  std::unique_ptr<Recordset> granting;        // its row of LiftGroup, or none
  std::vector<GrantedController> controller;  // the lift's, when the group has a door there
};

GroupLift groupLift(Installation& installation, const std::string& group, const std::string& lift) {
  Database& database = installation.database();
  GroupLift found;
  found.group = GroupNames(installation).id(group);
  const auto output = database.openRecordset(
      "parameters pName memo; select * from Alarms where Type = 'M' and Name = pName", {{"pName", lift}});
  if (output->eof())
    throw notFound("msgCantFindAlarm", lift,
                   namesOf(installation, "select Name from Alarms where Type = 'M'"));
  found.lift = output->get("Id").toInt32();
  found.granting = database.openRecordset(
      "parameters pGroup long, pLift long; select * from LiftGroup where AccessGroup = pGroup and LiftNum = "
      "pLift",
      {{"pGroup", found.group}, {"pLift", found.lift}});
  const std::int16_t station = output->get("StationId").toInt16();
  const std::int16_t address = output->get("ControllerAddress").toInt16();
  for (const ReachedController& reached : reachOf(installation, found.group)) {
    if (reached.controller.station == station && reached.controller.address == address) {
      found.controller.push_back(reached.controller);
    }
  }
  return found;
}

}  // namespace

std::int32_t addLift(Installation& installation, const LiftTexts& lift) {
  const std::int16_t station = stationNamed(installation, lift.station)->get("Id").toInt16();
  std::int32_t id = 1;
  const auto alarms = installation.database().openRecordset("select * from Alarms order by Id");
  for (; !alarms->eof() && alarms->get("Id").toInt32() == id; alarms->moveNext()) ++id;
  alarms->addNew();
  alarms->set("Id", id);
  alarms->set("Num", numberWithin("the output", lift.number, 1, lastOutput));
  alarms->set("Type", "M");
  alarms->set("Name", checkedName(lift.name));
  alarms->set("StationId", station);
  alarms->set("ControllerAddress", controllerAddress(lift.address));
  storeRow(installation, *alarms, "Alarms", "lift output");
  return id;
}

std::vector<LiftRow> listLifts(Installation& installation) {
  Database& database = installation.database();
  const GroupNames names(installation);
  std::vector<LiftRow> lifts;
  const auto rows = database.openRecordset(
      "select Alarms.Id, Alarms.Name as Lift, Stations.Name as Station, ControllerAddress, Num from Alarms "
      "inner join Stations on Alarms.StationId = Stations.Id where Alarms.Type = 'M' order by Alarms.Id");
  for (; !rows->eof(); rows->moveNext()) {
    LiftRow& lift = lifts.emplace_back();
    lift = {rows->get("Id"),      rows->get("Lift"),
            rows->get("Station"), rows->get("ControllerAddress"),
            rows->get("Num"),     {}};
    const auto granted = database.openRecordset(
        "parameters pLift long; select AccessGroup from LiftGroup where LiftNum = pLift order by AccessGroup",
        {{"pLift", lift.id}});
    for (; !granted->eof(); granted->moveNext()) {
      lift.groups.push_back(names.name(granted->get("AccessGroup").toInt16()));
    }
  }
  return lifts;
}

bool grantLift(Installation& installation, const std::string& group, const std::string& lift) {
  const GroupLift found = groupLift(installation, group, lift);
  if (!found.granting->eof()) return true;
  Transaction transaction(installation.engine(), installation.database());
  found.granting->addNew();
  found.granting->set("AccessGroup", found.group);
  found.granting->set("LiftNum", found.lift);
  found.granting->update();
  if (!found.controller.empty()) markGroup(installation, found.group);
  transaction.commit();
  return !found.controller.empty();
}

void revokeLift(Installation& installation, const std::string& group, const std::string& lift) {
  const GroupLift found = groupLift(installation, group, lift);
  if (found.granting->eof()) throw Refusal("the access group " + group + " may not use " + lift);
  ForgetCards forget(installation);
  forget.on(found.controller, cardsOf(installation, found.group).live);
  forget.send();
  Transaction transaction(installation.engine(), installation.database());
  found.granting->remove();
  if (!found.controller.empty()) markGroup(installation, found.group);
  transaction.commit();
}

}  // namespace voxa
