#pragma once

#include <optional>
#include <string>

#include "platform/driver/driver.h"
#include "platform/driver/dynamic_library.h"

namespace voxa {

/// The driver as a library of the operating system. It is loaded at the first call and kept. After a load
/// that failed the next call tries again: somebody may have put the library in its place meanwhile.
class LibraryDriver : public Driver {
 public:
  /// name: without prefix and extension. Where the library is looked for is in dynamic_library_posix.cpp and
  /// dynamic_library_windows.cpp.
  explicit LibraryDriver(std::string name = "TLXP32") : name_(std::move(name)) {}

  std::int16_t call(ComCommandsEnum command, std::int16_t stationId, std::int16_t controllerAddr) override;
  [[nodiscard]] int lastError() const override { return lastError_; }

 private:
  std::string name_;
  std::optional<DynamicLibrary> library_;
  int lastError_ = 0;
};

}  // namespace voxa
