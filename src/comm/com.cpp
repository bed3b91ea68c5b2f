#include "comm/com.h"

#include <string_view>

#include "comm/comm_context.h"
#include "comm/station.h"
#include "comm/station_result_file.h"
#include "files/command_file.h"
#include "files/line_span.h"
#include "files/seq_file.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/files.h"
#include "platform/ui/prompts.h"

namespace voxa {

namespace {

constexpr const char* crLf = "\r\n";
constexpr const char* betweenReaders = "  -  ";

std::string ofController(std::int16_t address) {
  return " Controller " + std::to_string(address);
}

bool isComFailure(std::int16_t result) {
  return result >= 1 && result <= 16;
}

std::int16_t toDriverAddress(std::int16_t controller) {
  return isOfController(controller) ? static_cast<std::int16_t>(controller + driverAddressOffset)
                                    : controller;
}

bool skipsTest(ComCommandsEnum command, std::int16_t controller) {
  return controller == CmToAllControllers || command == CmConnect || command == CmDisconnect ||
         command == CmReadDate || command == cmReadMemory;
}

}  // namespace

Com::Com(CommContext& context) : context_(context), inter_(context) {}

std::shared_ptr<Database> Com::database() {
  return requireOpen(context_.DB());
}

void Com::log(const std::string& event, bool withCommands, bool last) {
  if (!writeLog) return;
  const DateTime now = context_.clock().now();
  SeqFile file(context_);
  file.Name(logFileName);
  file.fopen();
  file.fprint(shortDate(now) + " " + shortTime(now) + " : " + event);
  if (withCommands) file.appendFile(context_.CommandFile().fileName());
  if (last) file.fprint("");
  file.fclose();
}

std::int16_t Com::Send(ComCommandsEnum command, std::int16_t StationID, std::int16_t ControllerAddr,
                       bool Silence, bool Autodetection) {
  return context_.attempt({"msgUnexpecErr", "Com.send"}, [&] {
    return sendChecked(command, {StationID, ControllerAddr}, Silence, Autodetection);
  });
}

std::int16_t Com::sendToAnswering(ComCommandsEnum command, std::int16_t station) {
  const auto rows = database()->openRecordset(
      "select * From ComStatus where StationID =" + std::to_string(station) + " and Status = 1");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t result = Send(command, station, rows->get("CtrAddr").toInt16());
    if (result != 0) return result;
  }
  return 0;
}

std::int16_t Com::sendChecked(ComCommandsEnum command, const ControllerPlace& target, bool silence,
                              bool autodetection) {
  if (command < CmReadDate || command > CmDisconnect) {
    throw Error(err::invalidArgument, "Invalid argument: no such command");
  }
  if (skipsTest(command, target.address)) return sendNow(command, target, silence, autodetection, false);
  const Reading reading(*database());
  if (TestSend(target.station, target.address)) {
    return sendNow(command, target, silence, autodetection, true);
  }
  database()->endReading();
  return target.address != CmToEachController ? std::int16_t{0} : sendToAnswering(command, target.station);
}

std::int16_t Com::sendLinesTested(const std::vector<std::string>& lines, const ControllerPlace& place) {
  context_.CommandFile().prepare(lines);
  return context_.attempt({"msgUnexpecErr", "Com.send"},
                          [&] { return sendNow(CmSendCommand, place, false, false, true); });
}

std::int16_t Com::sendNow(ComCommandsEnum command, const ControllerPlace& target, bool silence,
                          bool autodetection, bool tested) {
  const bool needsActive = !autodetection && command != CmConnect && command != CmDisconnect;
  bool active = needsActive && tested && isInUse(target.station);
  if (tested) database()->endReading();
  // Not asked yet, or no: which the question tells of.
  if (needsActive && !active) active = context_.Stations().isActive(target.station);
  const LineSpan lines(context_);
  if (!lines.refusal().empty()) {
    if (!silence) {
      errorList += crLf + lines.refusal() + " (" + getName(target.station, target.address) + ")";
    }
    return err::permissionDenied;
  }
  if (command == CmSendCommand) context_.CommandFile().restore();
  const std::int16_t driverAddress = toDriverAddress(target.address);
  log(std::string(driverNames[command]) + "(" + std::to_string(target.station) + "," +
          std::to_string(driverAddress) + ")",
      command == CmSendCommand && context_.CommandFile().isFull, false);
  if (needsActive && !active) {
    const char* mnemonic = command == CmSendCommand ? "msgDownloadToUnactive" : "msgSendToUnactive";
    errorList +=
        crLf + context_.messages().read(mnemonic) + " (" + getName(target.station, target.address) + ")";
    return -1;
  }
  const BusyPointer busy(context_.prompts());
  const std::int16_t result = inhibitCom ? driverSuccess : callDriver(command, target, driverAddress);
  log("Returns " + std::to_string(result), false, true);
  if (result == driverSuccess) return 0;
  if (silence) return result;
  const bool dateOfStation =
      target.address == CmToEachController && (command == CmSendDate || command == CmReadDate);
  const std::int16_t reported = dateOfStation && isComFailure(result) ? perController : result;
  recordFailure(reported, command, target, driverAddress);
  return reported;
}

bool Com::isInUse(std::int16_t StationID) {
  const auto row =
      database()->openRecordset("select Active from Stations where Id = " + std::to_string(StationID));
  return !row->eof() && row->get("Active").toBool();
}

std::int16_t Com::callDriver(ComCommandsEnum command, const ControllerPlace& target,
                             std::int16_t driverAddress) {
  const std::int16_t station = target.station;
  switch (command) {
    case CmReadDate:
      return inter_.readDate(station, driverAddress);
    case CmSendDate:
      return inter_.sendDate(station, driverAddress);
    case CmReadStatus:
      return inter_.readStatus(station, driverAddress);
    case cmReadMemory: {
      std::int16_t result = inter_.readMemory(station, driverAddress);
      if (result > driverSuccess && ResetRSOUT(station, target.address) != 0) {
        result = inter_.resetReadingPointer(station, driverAddress);
        if (result == driverSuccess) result = inter_.readMemory(station, driverAddress);
      }
      return result;
    }
    case CmResetReadPointer:
      return inter_.resetReadingPointer(station, driverAddress);
    case CmSendClear: {
      const std::int16_t result = inter_.sendClear(station, driverAddress);
      if (result != driverSuccess) ResetRSOUT(station, target.address);
      return result;
    }
    case CmSendCommand:
      return context_.CommandFile().isFull ? inter_.sendCommand(station, driverAddress) : std::int16_t{0};
    case CmConnect:
      return inter_.connect(station);
    case CmDisconnect:
      return inter_.disconnect(station);
  }
  return 0;
}

void Com::recordFailure(std::int16_t result, ComCommandsEnum command, const ControllerPlace& target,
                        std::int16_t driverAddress) {
  Messages& strings = context_.messages();
  const std::string number = std::to_string(result);
  const std::string head = crLf + strings.read("msgError") + " " + number + ": ";
  // 301 is the text of every failure on the line, whatever its number.
  if (isComFailure(result) && command != CmSendCommand) errorList = head + strings.read("msgComErr301");
  if (errorList.empty()) errorList = head + strings.read("msgComErr" + number);
  if (isComFailure(result)) errorList += crLf + getName(target.station, target.address);
  if (result != perController) return;
  if (driverAddress == CmToEachController) {
    const StationResult answers = readStationResult(context_, resultFileName(target.station));
    for (std::int16_t address = 1; address <= StationResult::controllers; ++address) {
      if (answers.failed(address)) errorList += crLf + getName(target.station, address);
    }
  } else if (driverAddress != CmToAllControllers) {
    errorList += crLf + getName(target.station, target.address);
  }
}

std::string Com::popErrorList() {
  return std::exchange(errorList, std::string());
}

std::map<ControllerPlace, std::string> Com::controllerNames() {
  std::map<ControllerPlace, std::string> names;
  const auto readers = database()->openRecordset(
      "select StationId, ControllerAddress, Readers.Name as Reader, Stations.Name as Station from Readers "
      "inner "
      "join Stations on Readers.StationId = Stations.Id where ControllerAddress is not null");
  for (; !readers->eof(); readers->moveNext()) {
    const ControllerPlace place{readers->get("StationId").toInt16(),
                                readers->get("ControllerAddress").toInt16()};
    std::string& name = names[place];
    if (name.empty()) name = readers->get("Station").toText() + ofController(place.address);
    name += betweenReaders + readers->get("Reader").toText();
  }
  return names;
}

std::string Com::getName(std::int16_t StationID, std::int16_t ControllerAddr) {
  const std::string station = std::to_string(StationID);
  const auto database = this->database();
  std::string name = "Unknown station";
  const auto stations = database->openRecordset("select Name from Stations where Id = " + station);
  if (!stations->eof()) name = stations->get("Name").toText();
  if (ControllerAddr == CmToEachController || ControllerAddr == CmToAllControllers) return name;
  const std::string address = std::to_string(ControllerAddr);
  name += ofController(ControllerAddr);
  const auto readers = database->openRecordset("select Name from Readers where StationId = " + station +
                                               "and ControllerAddress = " + address);
  for (; !readers->eof(); readers->moveNext()) name += betweenReaders + readers->get("Name").toText();
  return name;
}

std::int16_t Com::ResetRSOUT(std::int16_t StationID, std::int16_t ControllerAddr) {
  if (ControllerAddr != CmToEachController && ControllerAddr != CmToAllControllers) {
    return Send(CmReadDate, StationID, ControllerAddr, true);
  }
  const LineSpan lines(context_);
  lines.require();
  removeResultFile(StationID);
  return Send(CmReadDate, StationID, CmToEachController, true);
}

}  // namespace voxa
