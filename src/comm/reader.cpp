#include "comm/reader.h"

#include "comm/station.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

constexpr std::int16_t lastId = 998;

FailureMessage cantFind(const char* method, const Value& what) {
  return {"msgCantFindReader", method, what};
}

}  // namespace

void Reader::createFields(TableDef& td) {
  const auto flag = [&](const char* name) { addField(td, name, DataType::Boolean); };
  addField(td, "Id", DataType::Long);
  addField(td, "Orientation", DataType::Integer);
  flag("OrientationFlagD");
  addField(td, "Name", DataType::Text, 50);
  addField(td, "StationId", DataType::Integer);
  addField(td, "ControllerType", DataType::Text, 5);
  addField(td, "ControllerAddress", DataType::Integer);
  addField(td, "Position", DataType::Integer);
  gen_.appendField("AccessCriterias", DataType::Integer, 0, std::int16_t{1});
  flag("AccessCriteriasFlagD");
  gen_.appendField("Antipassback", DataType::Boolean, 0, false);
  flag("AntipassbackFlagD");
  gen_.appendField("DoorOpenDelay", DataType::Integer, 0, std::int16_t{4});
  flag("DoorOpenDelayFlagD");
  gen_.appendField("DoorCloseDelay", DataType::Integer, 0, std::int16_t{2});
  gen_.appendField("DoorAlarmMode", DataType::Integer, 0, std::int16_t{0});
  flag("DoorAlarmModeFlagD");
  gen_.appendField("WeeklyProgType", DataType::Text, 1, "C");
  gen_.appendField("WeeklyProgNum", DataType::Integer, 0, std::int16_t{0});
  gen_.appendField("DoorMode", DataType::Text, 2, "00");
  flag("DoorModeFlagD");
  addField(td, "LockedOnInputNum", DataType::Integer);
  flag("LockedOnInputNumFlagD");
  addField(td, "PINCode", DataType::Integer);
  flag("PINCodeFlagD");
  gen_.appendField("SupervisorMode", DataType::Integer, 0, std::int16_t{0});
  flag("SupervisorModeFlagD");
  addField(td, "Counting", DataType::Boolean);
  flag("CountingFlagD");
}

void Reader::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"Id"}, IndexKind::primary);
  addIndex(td, "Name", {"Name"}, IndexKind::uniqueRequired);
  addIndex(td, "Reader", {"StationId", "ControllerAddress", "Position"}, IndexKind::unique);
}

std::int16_t Reader::createRelations() {
  relate("ReaderStation", Station::tableName, "Id", "StationId");
  return 0;
}

std::int16_t Reader::getFreeId() {
  return freeId(lastId);
}

std::int16_t Reader::controllerOf(const std::string& condition, const Value& what, std::int16_t& StationID,
                                  std::int16_t& ControllerAddr) {
  // One message for both lookups: the person knows the reader by name or number either way.
  const bool found = lookUp("select StationId, ControllerAddress from Readers where " + condition,
                            cantFind("Reader.getControllerAddr", what), false, [&](Recordset& row) {
                              StationID = row.get("StationId").toInt16();
                              ControllerAddr = row.get("ControllerAddress").toInt16();
                            });
  return found ? std::int16_t{0} : std::int16_t{-1};
}

std::int16_t Reader::getControllerAddr(const std::string& readerName, std::int16_t& StationID,
                                       std::int16_t& ControllerAddr) {
  return controllerOf("Name = '" + readerName + "'", readerName, StationID, ControllerAddr);
}

std::int16_t Reader::getControllerAddrID(std::int32_t readerId, std::int16_t& StationID,
                                         std::int16_t& ControllerAddr) {
  return controllerOf("ID = " + std::to_string(readerId), readerId, StationID, ControllerAddr);
}

std::int16_t Reader::getId(std::int16_t StationID, std::int16_t ControllerAddr, std::int16_t readerPos,
                           bool noMessage) {
  const std::string station = std::to_string(StationID);
  const std::string address = std::to_string(ControllerAddr);
  std::int16_t id = -1;
  lookUp("select Id from Readers where stationId = " + station + " and controllerAddress = " + address +
             " and Position = " + std::to_string(readerPos),
         cantFind("Reader.getId", "Station " + station + " controller " + address), noMessage,
         [&](Recordset& row) { id = row.get("Id").toInt16(); });
  return id;
}

std::int16_t Reader::getIdByName(const std::string& Name) {
  std::int16_t id = 0;
  lookUp("select Id from Readers where name = '" + Name + "'", cantFind("Reader.getIdBYName", Name), false,
         [&](Recordset& row) { id = row.get("Id").toInt16(); });
  return id;
}

std::string Reader::getName(std::int16_t Id, bool noMessage) {
  std::string name;
  lookUp("select Name from Readers where Id = " + std::to_string(Id), cantFind("Reader.getName", Id),
         noMessage, [&](Recordset& row) { name = row.get("Name").toText(); });
  return name;
}

std::string addressFault(const std::string& readerName, const Value& controllerAddress) {
  constexpr std::int32_t lastAddress = 16;
  const std::int32_t address = controllerAddress.isNull() ? 0 : controllerAddress.toInt32();
  if (address >= 1 && address <= lastAddress) return "";
  return "the reader " + readerName + " has " +
         (controllerAddress.isNull() ? "no controller address"
                                     : "the controller address " + std::to_string(address)) +
         ": it has to be one of 1 to 16";
}

}  // namespace voxa
