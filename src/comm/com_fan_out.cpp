// From a component (all active stations, a station, a reader) to the single sends.

#include "comm/com.h"
#include "comm/comm_context.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "files/command_file.h"
#include "platform/database/database.h"

namespace voxa {

std::int16_t Com::sendToReader(ComCommandsEnum command, const std::string& readerName) {
  std::int16_t station = 0;
  std::int16_t address = 0;
  const std::int16_t found = context_.Readers().getControllerAddr(readerName, station, address);
  return found == 0 ? Send(command, station, address) : found;
}

std::int16_t Com::sendToStation(ComCommandsEnum command, const std::string& stationName) {
  const std::int16_t station = context_.Stations().getId(stationName);
  return station == -1 ? station : Send(command, station, CmToEachController);
}

std::int16_t Com::eachActiveStation(ComCommandsEnum command, std::int16_t address) {
  std::int16_t first = 0;
  const auto stations = database()->openRecordset("select Id From Stations where Active = true");
  for (; !stations->eof(); stations->moveNext()) {
    const std::int16_t result = Send(command, stations->get("Id").toInt16(), address);
    if (first == 0) first = result;
  }
  return first;
}

std::int16_t Com::sendBrodcast(ComCommandsEnum command) {
  return context_.attempt({"msgUnexpecErr", "Com.sendBrodcast"},
                          [&] { return eachActiveStation(command, CmToAllControllers); });
}

std::int16_t Com::sendToActiveStations(ComCommandsEnum command) {
  return context_.attempt({"msgUnexpecErr", "Com.sendToActiveStations"},
                          [&] { return eachActiveStation(command, CmToEachController); });
}

std::int16_t Com::sendToComp(ComCommandsEnum command, ComponentType compType, const std::string& compName) {
  switch (compType) {
    case CTActiveStations:
      return sendToActiveStations(command);
    case CTReader:
      return sendToReader(command, compName);
    case CTStation:
      return sendToStation(command, compName);
  }
  return context_.attempt({"msgUnexpecErr", "Com.sendToComp"}, [&] { requireKnown(compType); });
}

std::int16_t Com::sendLines(const std::vector<std::string>& lines, ComponentType compType,
                            const std::string& compName) {
  context_.CommandFile().write(lines);
  return sendToComp(CmSendCommand, compType, compName);
}

std::int16_t Com::sendLines(const std::vector<std::string>& lines, const ControllerPlace& place) {
  context_.CommandFile().write(lines);
  return Send(CmSendCommand, place.station, place.address);
}

std::int16_t Com::sendCommand(const std::string& commandCode, ComponentType compType,
                              const std::string& compName) {
  return sendCommand(commandCode, {compType, compName}, showing(context_));
}

std::int16_t Com::sendCommand(const std::string& commandCode, const Component& component,
                              const Tell& teller) {
  const std::int16_t result =
      context_.attempt([&] { return sendLines({commandCode}, component.type, component.name); });
  if (result != 0) tell(context_, teller, {"msgCantSendCommand", "Com.SendCommand", Value(popErrorList())});
  return result;
}

}  // namespace voxa
