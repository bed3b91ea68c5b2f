#include "driver/tlxp32.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <cerrno>
#endif
#include <exception>
#include <memory>

#include "driver/operations.h"
#include "site/results.h"
#include "site/site.h"

namespace {

// The site for the current folder and environment. It stays open from call to call.
site::Storage& currentSite() {
  static std::unique_ptr<site::SiteFile> file;
  std::filesystem::path folder = site::defaultFolder();
  if (!file || file->folder() != folder) file = std::make_unique<site::SiteFile>(std::move(folder));
  return file->get();
}

// The driver's result tells what became of the operation. On the way the system may have left an error, of a
// file that may be missing, say. The caller would show that error, so it is cleared.
void clearSystemError() {
#if defined(_WIN32)
  ::SetLastError(0);
#else
  errno = 0;
#endif
}

// Runs one operation as one transaction. No exception may leave the library.
template <typename Operation, typename... Arguments>
std::int16_t run(Operation operation, Arguments... arguments) {
  try {
    site::Storage& storage = currentSite();
    site::Transaction transaction(storage);
    const std::int16_t result = operation(storage, arguments...);
    transaction.commit();
    clearSystemError();
    return result;
  } catch (const std::exception&) {
    return site::result::storageFailed;
  }
}

}  // namespace

std::int16_t TLXP_CALL RDDAT(std::int16_t station, std::int16_t address) {
  return run(driver::readDate, station, address);
}
std::int16_t TLXP_CALL SDDAT(std::int16_t station, std::int16_t address) {
  return run(driver::sendDate, station, address);
}
std::int16_t TLXP_CALL RDSTAT(std::int16_t station, std::int16_t address) {
  return run(driver::readStatus, station, address);
}
std::int16_t TLXP_CALL RDMEM(std::int16_t station, std::int16_t address) {
  return run(driver::readMemory, station, address);
}
std::int16_t TLXP_CALL SDRST(std::int16_t station, std::int16_t address) {
  return run(driver::resetReadPointer, station, address);
}
std::int16_t TLXP_CALL SDCLR(std::int16_t station, std::int16_t address) {
  return run(driver::sendClear, station, address);
}
std::int16_t TLXP_CALL SDCMD(std::int16_t station, std::int16_t address) {
  return run(driver::sendCommand, station, address);
}
std::int16_t TLXP_CALL CONNECT(std::int16_t station) {
  return run(driver::connect, station, true);
}
std::int16_t TLXP_CALL DISNNECT(std::int16_t station) {
  return run(driver::connect, station, false);
}
