#include "access/card_doors.h"

#include <algorithm>

#include "files/conversions.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

// Positions 1 and 3 are the two sides of the first door, 2 and 4 those of the second.
bool grants(const std::vector<GrantedDoor>& doors, int door, std::int16_t program) {
  bool granted = false;
  for (const GrantedDoor& reader : doors) {
    if (reader.position != door && reader.position != door + 2) continue;
    if (reader.weeklyProgram != program) return false;
    granted = true;
  }
  return granted;
}

}  // namespace

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
      "SELECT r.Id, r.ControllerAddress, r.ControllerType, r.Position, a.WeeklyProgNum, s.Id, s.Name, "
      "s.Active FROM AccGroupReaders AS a, Readers AS r, Stations AS s Where (((r.id) = [a].[readerId]) And "
      "((s.id) = [r].[StationID]) And ((a.accessGroupId) = " +
      std::to_string(accessGroupId) + ")) ORDER BY s.Id, r.ControllerAddress, r.Position ");
  std::vector<GrantedController> controllers;
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t station = rows->get("s.Id").toInt16();
    const std::int16_t address = nullToInt(rows->get("ControllerAddress"));
    if (controllers.empty() || controllers.back().station != station ||
        controllers.back().address != address) {
      const Value type = rows->get("ControllerType");
      controllers.push_back({station,
                             rows->get("Name").toText(),
                             rows->get("Active").toBool(),
                             address,
                             type.isNull() ? "" : type.toText(),
                             {}});
    }
    controllers.back().doors.push_back(
        {nullToInt(rows->get("Position")), nullToInt(rows->get("WeeklyProgNum"))});
  }
  return controllers;
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

}  // namespace voxa
