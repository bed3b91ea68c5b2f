#include "comm/station.h"

#include <algorithm>

#include "comm/com.h"
#include "comm/modem_file.h"
#include "files/command_file.h"
#include "files/line_span.h"
#include "files/seq_file.h"
#include "lines/line_speed.h"
#include "platform/database/database.h"
#include "platform/files.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr std::int16_t lastId = 998;

std::string iniFile(std::int16_t id) {
  return "S" + zeroPadded(id, 3) + ".ini";
}

FailureMessage cantFind(const char* method, const Value& what) {
  return {"msgCantFindStation", method, what};
}

/// A text for a line of the ini file. A line break in it would begin a line that tells the driver something
/// else, such as what file to send.
std::string iniText(const Value& value) {
  std::string text = value.isNull() ? "" : value.toText();
  if (std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; })) {
    throw Error(err::invalidArgument, "Invalid argument: a control character in a station's texts");
  }
  return text;
}

std::string modemFile(const Value& value) {
  std::string path = value.isNull() ? "" : value.toText();
  if (const std::string_view fault = modemFileFault(path); !fault.empty()) {
    throw Error(err::invalidArgument,
                "Invalid argument: the modem's ini file is a file on this computer, not " +
                    std::string(fault) + " (" + path + ")");
  }
  return path;
}

}  // namespace

void Station::createFields(TableDef& td) {
  addField(td, "Id", DataType::Integer);
  addField(td, "Name", DataType::Text, 50);
  addField(td, "ComPort", DataType::Integer, 0, std::int16_t{0});
  addField(td, "ComSpeed", DataType::Long, 0, std::int32_t{4800});
  addField(td, "Phone", DataType::Text, 25);
  addField(td, "ModemIniFile", DataType::Text, 20);
  addField(td, "BackupPath", DataType::Text, 25);
  addField(td, "TimeoutDelay", DataType::Integer, 0, std::int16_t{1500});
  addField(td, "WaitingDelay", DataType::Integer, 0, std::int16_t{100});
  addField(td, "Active", DataType::Boolean);
  addField(td, "Connect", DataType::Boolean);
}

void Station::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"Id"}, IndexKind::primary);
  addIndex(td, "Name", {"Name"}, IndexKind::uniqueRequired);
}

void Station::insertDefaultRecs() {
  const std::int16_t id = getFreeId();
  if (id == -1) throw Error(err::overflow, "Overflow: there is no free station number");
  database().execute("Insert into Stations ( Id, Name, Active ) values (" + std::to_string(id) + ", '" +
                     context_.messages().read("nameStationLocal") + "', True )");
}

std::int16_t Station::getFreeId() {
  return freeId(lastId);
}

std::int16_t Station::getId(const std::string& stationName, bool* isActive) {
  std::int16_t id = -1;
  lookUp("select Id, Active from Stations where Name = '" + stationName + "'",
         cantFind("Station.getId", stationName), false, [&](Recordset& row) {
           id = row.get("Id").toInt16();
           if (isActive != nullptr) *isActive = row.get("Active").toBool();
         });
  return id;
}

std::string Station::getName(std::int16_t Id, bool noMessage) {
  const FailureMessage notFound = cantFind("Station.getName", Id);
  std::string name;
  const bool found = lookUp("select Name from Stations where Id = " + std::to_string(Id), notFound, noMessage,
                            [&](Recordset& row) { name = row.get("Name").toText(); });
  if (found && name.empty() && !noMessage) context_.report(notFound);
  return name;
}

bool Station::isActive(std::int16_t StationID) {
  bool active = false;
  lookUp("select Active from Stations where Id = " + std::to_string(StationID),
         cantFind("Station.isActive", StationID), false,
         [&](Recordset& row) { active = row.get("Active").toBool(); });
  return active;
}

std::string Station::getActiveStationOnPort(std::int16_t comPort) {
  std::string name;
  lookUp("Select Name from Stations where comPort = " + std::to_string(comPort) + "and Active = true",
         cantFind("Station.getActiveStationOnPort", comPort), true,
         [&](Recordset& row) { name = row.get("Name").toText(); });
  return name;
}

void Station::setActive(std::int16_t Id, bool active) {
  database().execute("update Stations set [active] = " + Value(active).toText() +
                     " where id = " + std::to_string(Id));
}

std::string Station::findConnected() {
  std::string name;
  lookUp("Select Name from Stations where Phone <> '' and Active = true",
         cantFind("Station.findConnected", {}), true,
         [&](Recordset& row) { name = row.get("Name").toText(); });
  return name;
}

std::string Station::GetCompar(std::int16_t Id, std::int16_t ControllerAddr) {
  // The messages name createIniFile, whose search this is.
  const FailureMessage notFound = cantFind("Station.createIniFile", Id);
  std::string parameters;
  context_.attempt(notFound, [&] {
    if (gen_.openWhere("Id = " + std::to_string(Id))) {
      context_.report(notFound);
      return;
    }
    const Recordset& row = *gen_.currentRecordset();
    parameters = std::to_string(row.get("ComPort").toInt32() + 1) + zeroPadded(ControllerAddr, 2) +
                 row.get("ComSpeed").toText();
  });
  return parameters;
}

std::vector<std::string> Station::iniLines(const Recordset& row, std::int16_t timeOutDelay,
                                           std::int32_t Speed) {
  std::vector<std::string> lines = {
      "NAM:" + iniText(row.get("Name")), "COM:" + std::to_string(row.get("ComPort").toInt32() + 1),
      "BDR:" + (Speed != 0 ? std::to_string(Speed) : std::to_string(row.get("ComSpeed").toInt32()))};
  if (const std::string phone = iniText(row.get("Phone")); !phone.empty()) lines.push_back("TEL:" + phone);
  if (const std::string modem = modemFile(row.get("ModemIniFile")); !modem.empty()) {
    lines.push_back("MDM:" + modem);
  }
  lines.push_back("CFL:" + context_.CommandFile().fileName());
  lines.push_back("OUT:" + (timeOutDelay != 0 ? std::to_string(timeOutDelay)
                                              : std::to_string(row.get("TimeoutDelay").toInt16())));
  lines.push_back("TMP:" + std::to_string(row.get("WaitingDelay").toInt16()));
  lines.emplace_back("OPT:2");
  if (const std::string controllers = getControllerList(row.get("Id").toInt16()); !controllers.empty()) {
    lines.push_back("TER:" + controllers);
  }
  return lines;
}

std::int16_t Station::createIniFile(std::int16_t Id, std::int16_t timeOutDelay, std::int32_t Speed) {
  const LineSpan whole(context_);  // a driver that is called meanwhile would read half a file
  whole.require();
  const bool found = !gen_.openWhere("Id = " + std::to_string(Id));
  std::vector<std::string> lines;
  if (found) lines = iniLines(*gen_.currentRecordset(), timeOutDelay, Speed);
  SeqFile file(context_);
  file.Name(iniFile(Id));
  file.fopen("w");
  for (const std::string& line : lines) file.fprint(line);
  file.fclose();
  if (found) return 0;
  context_.report(cantFind("Station.createIniFile", Id));
  return -1;
}

void Station::removeIniFile(std::int16_t Id) {
  const LineSpan whole(context_);
  whole.require();
  const std::string file = iniFile(Id);
  if (files::removeRegular(file) || !files::exists(file)) return;
  throw Error(err::pathAccess, "the file " + file + " cannot be deleted");
}

std::string Station::getControllerList(std::int16_t Id) {
  const auto readers = rows("select ControllerAddress from Readers where stationId = " + std::to_string(Id) +
                            " order by ControllerAddress");
  std::string list;
  Value previous;
  for (; !readers->eof(); readers->moveNext()) {
    const Value address = readers->get(std::size_t{0});
    if (address.isNull() || address == previous) continue;
    if (!list.empty()) list += ",";
    list += std::to_string(address.toInt16());
    previous = address;
  }
  return list;
}

std::int16_t Station::SendSpeed(std::int16_t StationID, std::int32_t Speed) {
  const LineSpan whole(context_);  // no other process calls, or writes the ini file, at the speed in between
  whole.require();
  const std::string command = speedLine(Speed);
  std::int16_t first = 0;
  for (const std::int32_t candidate : lineSpeeds) {
    if (candidate == Speed) continue;
    createIniFile(StationID, 0, candidate);
    const std::int16_t result =
        comm_.Com().sendLines({command, command, command}, ControllerPlace{StationID, CmToAllControllers});
    if (first == 0) first = result;
  }
  return first;
}

}  // namespace voxa
