#include "work/group_reach.h"

#include <algorithm>

#include "platform/database/database.h"
#include "work/card_values.h"
#include "work/installation.h"

namespace voxa {

std::vector<ReachedController> reachOf(Installation& installation, std::int16_t group) {
  std::vector<ReachedController> reach;
  for (GrantedController& controller : controllersOf(installation.database(), group)) {
    ReachedController& reached = reach.emplace_back();
    const auto outputs = installation.database().openRecordset(
        "parameters pGroup long, pStation long, pAddress long; select Alarms.Num from LiftGroup inner join "
        "Alarms on LiftGroup.LiftNum = Alarms.Id where Alarms.Type = 'M' and LiftGroup.AccessGroup = pGroup "
        "and Alarms.StationId = pStation and Alarms.ControllerAddress = pAddress",
        {{"pGroup", group}, {"pStation", controller.station}, {"pAddress", controller.address}});
    for (; !outputs->eof(); outputs->moveNext()) reached.lifts.insert(outputs->get("Num").toInt16());
    reached.controller = std::move(controller);
  }
  return reach;
}

std::vector<GrantedController> without(const std::vector<ReachedController>& reach,
                                       const std::vector<ReachedController>& other) {
  std::vector<GrantedController> controllers;
  for (const ReachedController& one : reach) {
    const bool there = std::any_of(other.begin(), other.end(), [&](const ReachedController& has) {
      return has.controller.station == one.controller.station &&
             has.controller.address == one.controller.address &&
             std::includes(has.lifts.begin(), has.lifts.end(), one.lifts.begin(), one.lifts.end());
    });
    if (!there) controllers.push_back(one.controller);
  }
  return controllers;
}

CardsOfGroup cardsOf(Installation& installation, std::int16_t group) {
  CardsOfGroup cards;
  const auto rows = installation.database().openRecordset(
      "parameters pGroup long; select CardNum, Deleted, CardCodeFlagD from Cardholders where CardNum is not "
      "null and AccessGroupId = pGroup",
      {{"pGroup", group}});
  for (; !rows->eof(); rows->moveNext()) {
    const std::int32_t number = rows->get("CardNum").toInt32();
    if (!rows->get("Deleted").toBool()) cards.live.push_back(number);
    if (rows->get("Deleted").toBool() && rows->get("CardCodeFlagD").toBool()) cards.deleted.push_back(number);
  }
  return cards;
}

void markGroup(Installation& installation, std::int16_t group) {
  const auto cards = installation.database().openRecordset(
      "parameters pGroup long; select * from Cardholders where Deleted = false and AccessGroupId = pGroup",
      {{"pGroup", group}});
  if (cards->eof()) return;
  const auto row = installation.database().openRecordset(
      "parameters pGroup long; select * from AccessGroups where Id = pGroup", {{"pGroup", group}});
  row->edit();
  row->set("FlagD", true);
  row->update();
  for (; !cards->eof(); cards->moveNext()) {
    cards->edit();
    markWhole(*cards);
    cards->update();
  }
}

}  // namespace voxa
