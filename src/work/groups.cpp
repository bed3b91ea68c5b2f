#include "work/groups.h"

#include <map>
#include <set>

#include "access/access_group.h"
#include "platform/database/database.h"
#include "work/card_values.h"
#include "work/forget_cards.h"
#include "work/group_reach.h"
#include "work/installation.h"
#include "work/links.h"
#include "work/look_up.h"
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

std::vector<GroupRow> listGroups(Installation& installation) {
  Database& database = installation.database();
  std::map<std::int16_t, std::string> programs;
  for (const auto rows =
           database.openRecordset("select ProgNum, Name from WeeklyPrograms where ProgType = 'C'");
       !rows->eof(); rows->moveNext()) {
    programs[rows->get("ProgNum").toInt16()] = rows->get("Name").toText();
  }
  std::set<std::int16_t> marked;
  for (const auto links =
           database.openRecordset("select AccessGroupId from AccGroupReaders where FlagD = true");
       !links->eof(); links->moveNext()) {
    marked.insert(links->get("AccessGroupId").toInt16());
  }
  std::map<std::int16_t, std::int32_t> cards;
  for (const auto counts = database.openRecordset(
           "select AccessGroupId, count(*) as Cards from Cardholders where Deleted = false and "
           "AccessGroupId is not null group by AccessGroupId");
       !counts->eof(); counts->moveNext()) {
    cards[counts->get("AccessGroupId").toInt16()] = counts->get("Cards").toInt32();
  }
  std::vector<GroupRow> groups;
  for (const auto rows = database.openRecordset("select * from AccessGroups order by Id"); !rows->eof();
       rows->moveNext()) {
    GroupRow& group = groups.emplace_back();
    group.id = rows->get("Id").toInt16();
    group.name = rows->get("Name").toText();
    group.cards = cards[group.id];
    group.toSend = rows->get("FlagD").toBool() || marked.contains(group.id);
    for (const GrantedController& controller : controllersOf(database, group.id)) {
      for (DoorSide& side : sidesOf(database, group.id, controller)) {
        const auto program = programs.find(side.weeklyProgram);
        group.doors.push_back({std::move(side), program == programs.end() ? std::to_string(side.weeklyProgram)
                                                                          : program->second});
      }
    }
  }
  return groups;
}

std::vector<DoorsBesideLinks> grantDoor(Installation& installation, const std::string& group,
                                        const std::string& reader, const std::string& program) {
  Database& database = installation.database();
  const std::int16_t id = GroupNames(installation).id(group);
  const std::int32_t readerId = readerNamed(installation, reader)->get("Id").toInt32();
  const auto programs = weeklyProgramNamed(installation, "C", program);
  linkReader(installation, id, readerId, programs->get("ProgNum").toInt16());
  std::vector<DoorsBesideLinks> beside;
  for (const GrantedController& controller : controllersOf(database, id)) {
    beside.push_back({controller.twoPrograms() ? shutSides(database, id, controller) : "",
                      openOtherSides(database, id, controller)});
  }
  return beside;
}

void revokeDoor(Installation& installation, const std::string& group, const std::string& reader) {
  const std::int16_t id = GroupNames(installation).id(group);
  const auto door = readerNamed(installation, reader);
  const auto link = linkOf(installation, id, door->get("Id").toInt32());
  if (link->eof()) throw Refusal("the access group " + group + " does not open " + reader);
  const std::int16_t station = door->get("StationId").toInt16();
  const std::int16_t address = door->get("ControllerAddress").toInt16();
  ForgetCards forget(installation);
  for (const ReachedController& reached : reachOf(installation, id)) {
    const GrantedController& controller = reached.controller;
    if (controller.station != station || controller.address != address) continue;
    if (controller.doors.size() > 1) continue;  // it keeps the cards; the door is shut by their rights
    const CardsOfGroup cards = cardsOf(installation, id);
    forget.on({controller}, cards.live);
    forget.on({controller}, cards.deleted);
  }
  forget.send();
  Transaction transaction(installation.engine(), installation.database());
  link->remove();
  markGroup(installation, id);
  transaction.commit();
}

void deleteGroup(Installation& installation, const std::string& group, const std::string& moveTo) {
  const GroupNames names(installation);
  const std::int16_t id = names.id(group);
  if (id == defaultGroup) throw Refusal("the default access group cannot be deleted");
  const CardsOfGroup cards = cardsOf(installation, id);
  if (!cards.live.empty() && moveTo.empty()) {
    throw Refusal("msgDBDelRelated", "(" + std::to_string(cards.live.size()) +
                                         " cards: name the access group that they move to)");
  }
  const std::int16_t target = moveTo.empty() ? defaultGroup : names.id(moveTo);
  if (target == id) throw Refusal("the cards cannot stay in the access group " + group);
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
}

}  // namespace voxa
