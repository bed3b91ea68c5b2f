#include "access/card_doors.h"

#include <algorithm>

#include "comm/reader.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "platform/text.h"

namespace voxa {

namespace {

bool grants(const std::vector<GrantedDoor>& doors, int door, std::int16_t program) {
  bool granted = false;
  for (const GrantedDoor& reader : doors) {
    if (doorAt(reader.position) != door) continue;
    if (reader.weeklyProgram != program) return false;
    granted = true;
  }
  return granted;
}

bool isOfCards(const Value& family) {
  return !family.isNull() && equalNoCase(family.toText(), "C");
}

std::string groupName(Database& database, std::int16_t accessGroupId) {
  const auto row =
      database.openRecordset("select Name from AccessGroups where Id = " + std::to_string(accessGroupId));
  return row->eof() ? std::to_string(accessGroupId) : row->get("Name").toText();
}

/// "access group Staff, Local Controller 1: Side" of the sides of that access; "" when there is none.
std::string named(Database& database, std::int16_t accessGroupId, const GrantedController& controller,
                  DoorSide::Access access) {
  std::string readers;
  for (const DoorSide& side : sidesOf(database, accessGroupId, controller)) {
    if (side.access == access) readers += (readers.empty() ? "" : ", ") + side.reader;
  }
  if (readers.empty()) return readers;
  return "access group " + groupName(database, accessGroupId) + ", " + controller.stationName +
         " Controller " + std::to_string(controller.address) + ": " + readers;
}

/// Takes a row of a group's doors, which come by station, address and position.
void addDoor(std::vector<GrantedController>& controllers, const Recordset& row) {
  const std::int16_t station = row.get("s.Id").toInt16();
  const std::int16_t address = nullToInt(row.get("ControllerAddress"));
  if (controllers.empty() || controllers.back().station != station || controllers.back().address != address) {
    const Value type = row.get("ControllerType");
    controllers.push_back({{station, address},
                           row.get("Name").toText(),
                           row.get("Active").toBool(),
                           type.isNull() ? "" : type.toText(),
                           {}});
  }
  const Value program = row.get("WeeklyProgNum");
  controllers.back().doors.push_back({nullToInt(row.get("Position")), nullToInt(program),
                                      row.get("r.Id").toInt32(),
                                      !program.isNull() && isOfCards(row.get("WeeklyProgType"))});
}

}  // namespace

int doorAt(std::int16_t position) {
  return position >= 1 && position <= 4 ? 2 - position % 2 : 0;
}

CardRights GrantedController::rights() const {
  const std::int16_t program = doors.front().weeklyProgram;
  return {program, grants(doors, 1, program), grants(doors, 2, program)};
}

bool GrantedController::twoPrograms() const {
  return std::any_of(doors.begin(), doors.end(), [&](const GrantedDoor& door) {
    return door.weeklyProgram != doors.front().weeklyProgram;
  });
}

std::vector<GrantedController> controllersOf(Database& database, std::int16_t accessGroupId) {
  const auto rows = database.openRecordset(
      "SELECT r.Id, r.ControllerAddress, r.ControllerType, r.Position, a.WeeklyProgType, a.WeeklyProgNum, "
      "s.Id, s.Name, s.Active FROM AccGroupReaders AS a, Readers AS r, Stations AS s Where (((r.id) = "
      "[a].[readerId]) And "
      "((s.id) = [r].[StationID]) And ((a.accessGroupId) = " +
      std::to_string(accessGroupId) + ")) ORDER BY s.Id, r.ControllerAddress, r.Position ");
  std::vector<GrantedController> controllers;
  for (; !rows->eof(); rows->moveNext()) addDoor(controllers, *rows);
  return controllers;
}

std::map<std::int16_t, std::vector<GrantedController>> controllersOfGroups(Database& database) {
  const auto rows = database.openRecordset(
      "select r.Id, r.ControllerAddress, r.ControllerType, r.Position, a.WeeklyProgType, a.WeeklyProgNum, "
      "s.Id, s.Name, s.Active, a.AccessGroupId from AccGroupReaders as a, Readers as r, Stations as s "
      "where r.Id = a.ReaderId and s.Id = r.StationId "
      "order by a.AccessGroupId, s.Id, r.ControllerAddress, r.Position");
  std::map<std::int16_t, std::vector<GrantedController>> groups;
  for (; !rows->eof(); rows->moveNext()) addDoor(groups[rows->get("AccessGroupId").toInt16()], *rows);
  return groups;
}

std::string faultOf(Database& database, std::int16_t accessGroupId, const GrantedController& controller) {
  const bool addressed = addressFault("", controller.address).empty();
  for (const GrantedDoor& door : controller.doors) {
    if (addressed && door.byProgramOfCards) continue;
    const auto row = database.openRecordset(
        "select r.Name, r.ControllerAddress, a.WeeklyProgNum from Readers r, AccGroupReaders a where "
        "a.ReaderId = r.Id and r.Id = " +
        std::to_string(door.reader) + " and a.AccessGroupId = " + std::to_string(accessGroupId));
    const bool revoked = row->eof();  // meanwhile
    const std::string reader = revoked ? std::to_string(door.reader) : row->get("Name").toText();
    if (!addressed)
      return addressFault(reader, revoked ? Value(controller.address) : row->get("ControllerAddress"));
    return "the access group " + groupName(database, accessGroupId) + " opens " + reader +
           (revoked || row->get("WeeklyProgNum").isNull() ? " by no weekly program"
                                                          : " by a weekly program of another family") +
           ": grant it again with a program of family C";
  }
  return "";
}

std::vector<DoorSide> sidesOf(Database& database, std::int16_t accessGroupId,
                              const GrantedController& controller) {
  std::vector<DoorSide> sides;
  const bool told = faultOf(database, accessGroupId, controller).empty();
  const CardRights rights = controller.rights();
  for (const auto rows = database.openRecordset(
           "select Id, Name, Position from Readers where StationId = " + std::to_string(controller.station) +
           " and (ControllerAddress = " + std::to_string(controller.address) +
           (controller.address == 0 ? " or ControllerAddress is null" : "") + ") order by Position");
       !rows->eof(); rows->moveNext()) {
    const std::int32_t reader = rows->get("Id").toInt32();
    const std::int16_t position = nullToInt(rows->get("Position"));
    const auto door = std::find_if(controller.doors.begin(), controller.doors.end(),
                                   [&](const GrantedDoor& granted) { return granted.reader == reader; });
    const bool granted = door != controller.doors.end();
    const int number = doorAt(position);
    const bool opens = told && ((number == 1 && rights.firstDoor) || (number == 2 && rights.secondDoor));
    if (!granted && !opens) continue;
    using Access = DoorSide::Access;
    sides.push_back({rows->get("Name").toText(),
                     !opens    ? Access::shut
                     : granted ? Access::opens
                               : Access::otherSide,
                     granted ? door->weeklyProgram : rights.weeklyProgram});
  }
  return sides;
}

std::string shutSides(Database& database, std::int16_t accessGroupId, const GrantedController& controller) {
  return named(database, accessGroupId, controller, DoorSide::Access::shut) + " stays shut";
}

std::string openOtherSides(Database& database, std::int16_t accessGroupId,
                           const GrantedController& controller) {
  const std::string sides = named(database, accessGroupId, controller, DoorSide::Access::otherSide);
  return sides.empty() ? sides : sides + " opens too, the other side of a granted door";
}

std::vector<std::int16_t> liftOutputs(Database& database, std::int32_t cardholderId,
                                      const GrantedController& controller) {
  const auto rows = database.openRecordset(
      "SELECT Alarms.Num FROM Cardholders INNER JOIN (LiftGroup INNER JOIN Alarms ON LiftGroup.LiftNum = "
      "Alarms.Id) ON Cardholders.AccessGroupId = LiftGroup.AccessGroup WHERE Alarms.Type='M' AND "
      "Cardholders.Id=" +
      std::to_string(cardholderId) + " AND Alarms.StationId = " + std::to_string(controller.station) +
      " and Alarms.ControllerAddress = " + std::to_string(controller.address));
  std::vector<std::int16_t> outputs;
  for (; !rows->eof(); rows->moveNext()) outputs.push_back(nullToInt(rows->get("Num")));
  return outputs;
}

LiftRights liftRights(Database& database, std::optional<std::int16_t> onlyGroup) {
  const auto rows = database.openRecordset(
      "parameters pAll bit, pGroup long; "
      "select LiftGroup.AccessGroup, Alarms.Num, Alarms.StationId, Alarms.ControllerAddress from LiftGroup "
      "inner join Alarms on LiftGroup.LiftNum = Alarms.Id where Alarms.Type = 'M' and (pAll = true or "
      "LiftGroup.AccessGroup = pGroup)",
      {{"pAll", !onlyGroup}, {"pGroup", static_cast<std::int32_t>(onlyGroup.value_or(0))}});
  LiftRights rights;
  for (; !rows->eof(); rows->moveNext()) {
    const ControllerPlace place{nullToInt(rows->get("StationId")), nullToInt(rows->get("ControllerAddress"))};
    rights[{rows->get("AccessGroup").toInt16(), place}].push_back(nullToInt(rows->get("Num")));
  }
  return rights;
}

}  // namespace voxa
