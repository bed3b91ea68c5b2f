#include "work/group_list.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "platform/database/database.h"
#include "platform/text.h"
#include "work/card_values.h"
#include "work/installation.h"
#include "work/look_up.h"

namespace voxa {

namespace {

/// What the rows of groups are made of, read once.
class GroupRows {
 public:
  explicit GroupRows(Installation& installation) : database_(installation.database()) {
    each("select ProgNum, Name from WeeklyPrograms where ProgType = 'C'",
         [&](const Recordset& row) { programs_[row.get("ProgNum").toInt16()] = row.get("Name").toText(); });
    each("select AccessGroupId from AccGroupReaders where FlagD = true",
         [&](const Recordset& row) { marked_.insert(row.get("AccessGroupId").toInt16()); });
    each(
        "select AccessGroupId, count(*) as Cards from Cardholders where Deleted = false and AccessGroupId is "
        "not null group by AccessGroupId",
        [&](const Recordset& row) {
          cards_[row.get("AccessGroupId").toInt16()] = row.get("Cards").toInt32();
        });
    each(
        "select LiftGroup.AccessGroup, Alarms.Name from LiftGroup inner join Alarms on LiftGroup.LiftNum = "
        "Alarms.Id where Alarms.Type = 'M' order by Alarms.Id",
        [&](const Recordset& row) {
          lifts_[row.get("AccessGroup").toInt16()].push_back(row.get("Name").toText());
        });
  }

  /// only: of that number.
  std::vector<GroupRow> rows(std::optional<std::int16_t> only = {}) {
    std::vector<GroupRow> groups;
    each("select * from AccessGroups order by Id", [&](const Recordset& row) {
      if (!only || row.get("Id").toInt16() == *only) groups.push_back(of(row));
    });
    return groups;
  }

 private:
  template <typename Take>
  void each(const char* select, const Take& take) {
    for (const auto rows = database_.openRecordset(select); !rows->eof(); rows->moveNext()) take(*rows);
  }

  GroupRow of(const Recordset& row) {
    GroupRow group;
    group.id = row.get("Id").toInt16();
    group.name = row.get("Name").toText();
    group.cards = cards_[group.id];
    group.lifts = lifts_[group.id];
    group.toSend = row.get("FlagD").toBool() || marked_.contains(group.id);
    for (const GrantedController& controller : controllersOf(database_, group.id)) {
      for (DoorSide& side : sidesOf(database_, group.id, controller)) {
        const auto program = programs_.find(side.weeklyProgram);
        group.doors.push_back({std::move(side), program == programs_.end()
                                                    ? std::to_string(side.weeklyProgram)
                                                    : program->second});
      }
    }
    return group;
  }

  Database& database_;
  std::map<std::int16_t, std::string> programs_;
  std::set<std::int16_t> marked_;
  std::map<std::int16_t, std::int32_t> cards_;
  std::map<std::int16_t, std::vector<std::string>> lifts_;
};

/// The door as the group's cards open it; nullptr when they do not.
const GroupRow::Door* openDoor(const GroupRow& group, const std::string& reader) {
  const auto found = std::find_if(group.doors.begin(), group.doors.end(), [&](const GroupRow::Door& one) {
    return one.side.access != DoorSide::Access::shut && equalNoCase(one.side.reader, reader);
  });
  return found == group.doors.end() ? nullptr : &*found;
}

}  // namespace

std::vector<GroupRow> listGroups(Installation& installation, const std::string& door) {
  std::vector<GroupRow> groups = GroupRows(installation).rows();
  if (door.empty()) return groups;
  const std::string reader = readerNamed(installation, door)->get("Name").toText();
  std::erase_if(groups, [&](const GroupRow& group) {
    return std::none_of(group.doors.begin(), group.doors.end(),
                        [&](const GroupRow::Door& one) { return equalNoCase(one.side.reader, reader); });
  });
  return groups;
}

GroupRow findGroup(Installation& installation, const std::string& nameOrNumber) {
  return GroupRows(installation).rows(GroupNames(installation).id(nameOrNumber)).front();
}

std::string doorText(const GroupRow::Door& door) {
  switch (door.side.access) {
    case DoorSide::Access::opens:
      break;
    case DoorSide::Access::otherSide:
      return door.side.reader + " (" + door.program + ", the other side)";
    case DoorSide::Access::shut:
      return door.side.reader + " (stays shut)";
  }
  return door.side.reader + " (" + door.program + ")";
}

std::vector<std::string> gainsOf(const GroupRow& from, const GroupRow& to) {
  std::vector<std::string> gains;
  for (const GroupRow::Door& door : to.doors) {
    const auto* had = openDoor(from, door.side.reader);
    const bool same = had != nullptr && had->side.weeklyProgram == door.side.weeklyProgram;
    if (door.side.access != DoorSide::Access::shut && !same) gains.push_back(doorText(door));
  }
  for (const std::string& lift : to.lifts) {
    if (std::find(from.lifts.begin(), from.lifts.end(), lift) == from.lifts.end())
      gains.push_back("lift " + lift);
  }
  return gains;
}

std::vector<std::string> openedSince(const GroupRow& before, const GroupRow& now) {
  std::vector<std::string> readers;
  for (const GroupRow::Door& door : now.doors) {
    const std::string& reader = door.side.reader;
    if (openDoor(now, reader) != nullptr && openDoor(before, reader) == nullptr) readers.push_back(reader);
  }
  return readers;
}

std::vector<DoorsBesideLinks> doorsBesideLinks(Database& database, std::int16_t group) {
  std::vector<DoorsBesideLinks> beside;
  for (const GrantedController& controller : controllersOf(database, group)) {
    beside.push_back({controller.twoPrograms() ? shutSides(database, group, controller) : "",
                      openOtherSides(database, group, controller)});
  }
  return beside;
}

}  // namespace voxa
