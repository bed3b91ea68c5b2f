#include "work/card_details.h"

#include <algorithm>

#include "platform/database/database.h"
#include "work/card_history.h"
#include "work/card_values.h"
#include "work/carry_out.h"
#include "work/groups.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa {

namespace {

std::unique_ptr<Recordset> rowOf(Installation& installation, const std::string& card) {
  try {
    return cardNamed(installation, card);
  } catch (const Refusal&) {
    return cardNamed(installation, card, true);
  }
}

std::vector<CardDetails::Door> doorsOf(Installation& installation, const std::string& group) {
  std::vector<CardDetails::Door> doors;
  for (const GroupRow& row : listGroups(installation)) {
    if (row.name != group) continue;
    for (const GroupRow::Door& door : row.doors)
      doors.push_back({door.side.reader, door.program, door.side.access == DoorSide::Access::shut});
  }
  return doors;
}

std::vector<std::string> missingOf(Installation& installation, std::int32_t number) {
  std::vector<std::string> missing;
  if (!installation.ledger().open()) return missing;
  const WholePlan plan = planAll(installation, {.card = number});
  for (const LeftOut& row : plan.leftOut) missing.push_back("left out: " + row.reason);
  for (const PlannedController& controller : plan.controllers) {
    for (const PlanItem& item : controller.plan.items) {
      missing.push_back(controller.name + ": " + textOf(item.action) + " (" + textOf(item.reason) + ")");
    }
  }
  return missing;
}

}  // namespace

CardDetails cardDetails(Installation& installation, const std::string& card) {
  const auto row = rowOf(installation, card);
  const std::int32_t id = row->get("Id").toInt32();
  CardDetails details;
  details.deleted = row->get("Deleted").toBool();
  for (const CardRow& one : listCards(installation, {.deleted = details.deleted})) {
    if (one.id == id) details.row = one;
  }
  const Value note = row->get("Free");
  if (!note.isNull()) details.note = note.toText();
  details.earlierNames = CardOwners(installation).namesOf(id);
  std::erase(details.earlierNames, row->get("Name").toText());
  const Value group = details.row.group;
  if (!details.deleted) {
    details.doors = doorsOf(installation, group.isNull() ? GroupNames(installation).name(0) : group.toText());
  }
  details.lastUse = lastUse(installation, id);
  const Value number = row->get("CardNum");
  if (!number.isNull()) details.missing = missingOf(installation, number.toInt32());
  return details;
}

}  // namespace voxa
