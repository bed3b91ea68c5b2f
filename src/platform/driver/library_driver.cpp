#include "platform/driver/library_driver.h"

#include <cstddef>

#include "platform/error.h"

namespace voxa {

std::int16_t LibraryDriver::call(ComCommandsEnum command, std::int16_t stationId,
                                 std::int16_t controllerAddr) {
  if (command < CmReadDate || command > CmDisconnect) {
    throw Error(err::invalidArgument, "There is no driver operation " + std::to_string(command));
  }
  if (!library_) library_.emplace(name_);
  const std::string operation(driverNames[static_cast<std::size_t>(command)]);
  const auto entry = library_->find(operation);
  if (entry == nullptr) {
    throw Error(err::entryPointNotFound, "Can't find entry point " + operation + " in " + name_);
  }
  const bool lineOnly = command == CmConnect || command == CmDisconnect;
  const auto result = lineOnly ? DynamicLibrary::call(entry, stationId)
                               : DynamicLibrary::call(entry, stationId, controllerAddr);
  lastError_ = result.lastError;
  return result.value;
}

}  // namespace voxa
