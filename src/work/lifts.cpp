#include "work/lifts.h"

#include <memory>

#include "platform/database/database.h"
#include "work/card_values.h"
#include "work/forget_cards.h"
#include "work/group_reach.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"

namespace voxa {

namespace {

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
  const auto output = alarmNamed(installation, AlarmKind::lift, lift);
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

std::unique_ptr<Recordset> alarmNumbered(Installation& installation, const Value& id) {
  return installation.database().openRecordset("parameters pId long; select * from Alarms where Id = pId",
                                               {{"pId", id}});
}

std::vector<LiftRow> liftRows(Installation& installation, const Value& only) {
  Database& database = installation.database();
  const GroupNames names(installation);
  std::vector<LiftRow> lifts;
  const auto rows = database.openRecordset(
      "parameters pOnly long; select Alarms.Id, Alarms.Name as Lift, Stations.Name as Station, "
      "ControllerAddress, Num from Alarms inner join Stations on Alarms.StationId = Stations.Id where "
      "Alarms.Type = 'M' and (Alarms.Id = pOnly or pOnly is null) order by Alarms.Id",
      {{"pOnly", only}});
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

}  // namespace

std::int32_t addLift(Installation& installation, const LiftTexts& lift) {
  return addAlarmRow(installation, {lift.name, {}, lift.station, lift.address, lift.number}, "M",
                     "lift output");
}

ChangedDoors changeLift(Installation& installation, const std::string& lift, const AlarmTexts& change,
                        bool gone) {
  const Value id = alarmNamed(installation, AlarmKind::lift, lift)->get("Id");
  return changeDoors(installation, {.rows =
                                        [&] {
                                          const auto row = alarmNumbered(installation, id);
                                          row->edit();
                                          setAlarmRow(installation, *row, change);
                                          storeRow(installation, *row, "Alarms", "lift output");
                                        },
                                    .gone = gone});
}

ChangedDoors deleteLift(Installation& installation, const std::string& lift, const std::string& moveTo,
                        bool gone) {
  const LiftRow deleted = findLift(installation, lift);
  if (!deleted.groups.empty() && moveTo.empty()) {
    std::string groups;
    for (const std::string& group : deleted.groups) groups += (groups.empty() ? "" : ", ") + group;
    throw Refusal("lift output " + deleted.id.toText() + " (" + deleted.name.toText() +
                  ") is used by the access groups " + groups +
                  ": name the output that they may use instead with --move-to");
  }
  const Value target =
      moveTo.empty() ? Value() : alarmNamed(installation, AlarmKind::lift, moveTo)->get("Id");
  if (target == deleted.id) throw Refusal("the access groups cannot stay with " + lift);
  const auto rows = [&] {
    Database& database = installation.database();
    if (!moveTo.empty()) {
      database.execute(
          "parameters pTo long, pFrom long; insert into LiftGroup (AccessGroup, LiftNum) select "
          "AccessGroup, pTo from LiftGroup where LiftNum = pFrom and AccessGroup not in (select "
          "AccessGroup from LiftGroup where LiftNum = pTo)",
          {{"pTo", target}, {"pFrom", deleted.id}});
    }
    alarmNumbered(installation, deleted.id)->remove();
  };
  return changeDoors(installation, {.rows = rows, .gone = gone});
}

std::vector<LiftRow> listLifts(Installation& installation) {
  return liftRows(installation, Value());
}

LiftRow findLift(Installation& installation, const std::string& lift) {
  const auto rows = liftRows(installation, alarmNamed(installation, AlarmKind::lift, lift)->get("Id"));
  if (rows.empty()) throw Refusal("the lift output " + lift + " is on no station");
  return rows.front();
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
