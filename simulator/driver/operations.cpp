#include "driver/operations.h"

#include <filesystem>
#include <fstream>

#include "driver/ini.h"
#include "driver/line.h"
#include "driver/result_file.h"
#include "site/failure.h"
#include "site/memory.h"
#include "site/private_file.h"
#include "site/results.h"

namespace driver {

namespace result = site::result;

namespace {

constexpr const char* dumpFile = "J.DAT";

std::int16_t send(site::Storage& storage, int station, int address, const Line::Operation& operation) {
  const auto ini = readIni(station);
  if (!ini) return result::noIniFile;
  return Line(storage, station, *ini).send(address, operation);
}

void writeDump(const std::string& dump) {
  site::makePrivate(dumpFile);
  std::ofstream stream(dumpFile, std::ios::binary | std::ios::trunc);
  stream << dump;
  stream.close();
  if (!stream) throw site::Failure("J.DAT cannot be written.");
}

}  // namespace

std::int16_t readDate(site::Storage& storage, int station, int address) {
  ResultFile file;
  Line::Operation operation{[&](const site::Controller& controller) {
    file.answered(controller);
    return result::success;
  }};
  operation.failed = [&](int asked, std::int16_t result) { file.failed(asked, result); };
  const std::int16_t answer = send(storage, station, address, operation);
  if (address == Line::each && answer != result::noIniFile) file.write(station);
  return answer;
}

std::int16_t sendDate(site::Storage& storage, int station, int address) {
  return send(storage, station, address, {[&](site::Controller& controller) {
                site::storeClock(storage, controller, 0);
                return result::success;
              }});
}

std::int16_t readStatus(site::Storage& storage, int station, int address) {
  return send(storage, station, address, {[](const site::Controller&) { return result::success; }});
}

std::int16_t readMemory(site::Storage& storage, int station, int address) {
  if (address == Line::broadcast) return readStatus(storage, station, address);
  std::string dump;
  bool any = false;
  const std::int16_t answer = send(storage, station, address, {[&](site::Controller& controller) {
                                     // The half line of a controller before must not run into this one's
                                     // first line.
                                     if (!dump.empty() && dump.back() != '\n') dump += "\r\n";
                                     const std::int16_t read = site::readMemory(storage, controller, dump);
                                     any = any || read != result::memoryOverflowed;
                                     return read;
                                   }});
  std::error_code error;
  std::filesystem::remove(dumpFile, error);
  if (any) writeDump(dump);
  return answer;
}

std::int16_t resetReadPointer(site::Storage& storage, int station, int address) {
  return send(storage, station, address, {[&](site::Controller& controller) {
                site::resetReadPointer(storage, controller);
                return result::success;
              }});
}

std::int16_t sendClear(site::Storage& storage, int station, int address) {
  return send(storage, station, address,
              {[&](site::Controller& controller) { return site::clearRead(storage, controller); }});
}

std::int16_t sendCommand(site::Storage& storage, int station, int address) {
  const auto ini = readIni(station);
  if (!ini) return result::noIniFile;
  const auto lines = ini->commandFile.empty() ? std::nullopt : readLines(ini->commandFile);
  if (!lines) return result::noCommandFile;
  Line::Operation operation{[&](site::Controller& controller) {
    return site::receive(storage, controller, *lines, address != Line::broadcast);
  }};
  operation.refused = [&](site::Controller& controller) { site::refuse(storage, controller, *lines); };
  return Line(storage, station, *ini).send(address, operation);
}

std::int16_t connect(site::Storage& storage, int station, bool connected) {
  if (!readIni(station)) return result::noIniFile;
  site::storeLineConnected(storage, station, connected);
  return result::success;
}

}  // namespace driver
