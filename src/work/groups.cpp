#include "work/groups.h"

#include <algorithm>
#include <set>

#include "access/access_group.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "work/card_values.h"
#include "work/forget_cards.h"
#include "work/group_reach.h"
#include "work/installation.h"
#include "work/links.h"
#include "work/look_up.h"
#include "work/program_uses.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::int16_t defaultGroup = 0;

void moveCards(Installation& installation, std::int16_t from, std::int16_t to) {
  const auto cards = installation.database().openRecordset(
      "parameters pGroup long; select * from Cardholders where AccessGroupId = pGroup", {{"pGroup", from}});
  CardValues moved;
  moved.group = to;
  for (; !cards->eof(); cards->moveNext()) {
    cards->edit();
    if (cards->get("Deleted").toBool()) {
      // It opens nothing anywhere; it has to be in a group that there is.
      cards->set("AccessGroupId", defaultGroup);
    } else {
      moved.set(*cards);
      markWhole(*cards);
    }
    cards->update();
  }
}

}  // namespace

std::int16_t addGroup(Installation& installation, const std::string& name) {
  const std::int16_t id = installation.AccessGroups().getFreeId();
  if (id == -1) throw Refusal("the installation has no free number for an access group");
  const auto rows = installation.database().openRecordset("select * from AccessGroups");
  rows->addNew();
  rows->set("Id", id);
  rows->set("Name", checkedName(name));
  storeRow(installation, *rows, "AccessGroups", "access group");
  return id;
}

std::int16_t copyGroup(Installation& installation, const std::string& group, const std::string& name) {
  Transaction transaction(installation.engine(), installation.database());
  const std::int16_t from = GroupNames(installation).id(group);
  const std::int16_t copy = addGroup(installation, name);
  const Database::Parameters groups = {{"pTo", copy}, {"pFrom", from}};
  (void)installation.database().execute(
      "parameters pTo long, pFrom long; insert into AccGroupReaders (AccessGroupId, ReaderId, "
      "WeeklyProgType, "
      "WeeklyProgNum) select pTo, ReaderId, WeeklyProgType, WeeklyProgNum from AccGroupReaders where "
      "AccessGroupId = pFrom",
      groups);
  (void)installation.database().execute(
      "parameters pTo long, pFrom long; insert into LiftGroup (AccessGroup, LiftNum) select pTo, LiftNum "
      "from "
      "LiftGroup where AccessGroup = pFrom",
      groups);
  transaction.commit();
  return copy;
}

void renameGroup(Installation& installation, const std::string& group, const std::string& name) {
  const auto row = installation.database().openRecordset(
      "parameters pGroup long; select * from AccessGroups where Id = pGroup",
      {{"pGroup", GroupNames(installation).id(group)}});
  row->edit();
  row->set("Name", checkedName(name));
  storeRow(installation, *row, "AccessGroups", "access group");
}

std::vector<DoorsBesideLinks> grantDoors(Installation& installation, const std::string& group,
                                         const std::vector<std::string>& readers,
                                         const std::string& program) {
  const std::int16_t id = GroupNames(installation).id(group);
  std::set<std::int32_t> ids;
  for (const std::string& reader : readers) {
    ids.insert(readerNamed(installation, reader)->get("Id").toInt32());
  }
  const auto programs = weeklyProgramNamed(installation, "C", program);
  linkReaders(installation, id, ids, programs->get("ProgNum").toInt16());
  return doorsBesideLinks(installation.database(), id);
}

std::vector<std::string> revokeDoors(Installation& installation, const std::string& group,
                                     const std::vector<std::string>& readers) {
  const std::int16_t id = GroupNames(installation).id(group);
  std::set<std::int32_t> ids;
  std::string notOpened;
  for (const std::string& reader : readers) {
    const std::int32_t door = readerNamed(installation, reader)->get("Id").toInt32();
    if (linkOf(installation, id, door)->eof()) notOpened += (notOpened.empty() ? "" : ", ") + reader;
    ids.insert(door);
  }
  if (!notOpened.empty()) throw Refusal("the access group " + group + " does not open " + notOpened);
  const GroupRow before = findGroup(installation, GroupNames(installation).name(id));
  ForgetCards forget(installation);
  const CardsOfGroup cards = cardsOf(installation, id);
  std::set<ControllerPlace> erased;
  for (const ReachedController& reached : reachOf(installation, id)) {
    const auto& doors = reached.controller.doors;
    // One that keeps a door keeps the cards; the others are shut by their rights.
    const bool loses = std::all_of(doors.begin(), doors.end(),
                                   [&](const GrantedDoor& door) { return ids.contains(door.reader); });
    if (!loses) continue;
    erased.insert(reached.controller);
    forget.on({reached.controller}, cards.live);
    forget.on({reached.controller}, cards.deleted);
  }
  forget.send();
  Transaction transaction(installation.engine(), installation.database());
  for (const std::int32_t door : ids) {
    if (const auto link = linkOf(installation, id, door); !link->eof()) link->remove();
  }
  markGroup(installation, id);
  transaction.commit();
  std::vector<std::string> open;
  if (cards.live.empty()) return open;
  for (const std::string& reader :
       openedSince(findGroup(installation, GroupNames(installation).name(id)), before)) {
    const auto row = readerNamed(installation, reader);
    const ControllerPlace place{row->get("StationId").toInt16(), nullToInt(row->get("ControllerAddress"))};
    if (!erased.contains(place)) open.push_back(reader);
  }
  return open;
}

DeletedGroup deleteGroup(Installation& installation, const std::string& group, const std::string& moveTo) {
  const GroupNames names(installation);
  const std::int16_t id = names.id(group);
  if (id == defaultGroup) throw Refusal("the default access group cannot be deleted");
  const CardsOfGroup cards = cardsOf(installation, id);
  if (!cards.live.empty() && moveTo.empty()) {
    throw Refusal(inUse("access group " + std::to_string(id) + " (" + names.name(id) + ")",
                        {std::to_string(cards.live.size()) + (cards.live.size() == 1 ? " card" : " cards")}));
  }
  const std::int16_t target = moveTo.empty() ? defaultGroup : names.id(moveTo);
  if (target == id) throw Refusal("the cards cannot stay in the access group " + group);
  DeletedGroup deleted{findGroup(installation, group), {}, {}};
  if (!cards.live.empty()) {
    const GroupRow other = findGroup(installation, names.name(target));
    deleted.movedTo = other.name;
    deleted.gains = gainsOf(deleted.group, other);
  }
  const auto before = reachOf(installation, id);
  ForgetCards forget(installation);
  forget.on(without(before, reachOf(installation, target)), cards.live);
  forget.on(without(before, {}), cards.deleted);
  forget.send();
  Transaction transaction(installation.engine(), installation.database());
  moveCards(installation, id, target);
  (void)installation.database()
      .prepare("parameters pGroup long; delete from AccessGroups where Id = pGroup")
      ->execute({id});
  transaction.commit();
  return deleted;
}

}  // namespace voxa
