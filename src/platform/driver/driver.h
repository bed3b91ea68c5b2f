#pragma once

#include <cstdint>
#include <string_view>

namespace voxa {

/// The nine controller operations. The value also indexes the driver's operation names. The mixed case of the
/// names is kept, since clients know them so.
enum ComCommandsEnum : std::int16_t {
  CmReadDate = 0,
  CmSendDate = 1,
  CmReadStatus = 2,
  cmReadMemory = 3,
  CmResetReadPointer = 4,
  CmSendClear = 5,
  CmSendCommand = 6,
  CmConnect = 7,
  CmDisconnect = 8
};

/// The driver's export names, each at the value of its command; indexes 9 and 10 are empty.
inline constexpr std::string_view driverNames[11] = {
    "RDDAT", "SDDAT", "RDSTAT", "RDMEM", "SDRST", "SDCLR", "SDCMD", "CONNECT", "DISNNECT", "", ""};

/// The seam to the controller driver. It runs one operation at a time: no second one while one is running.
class Driver {
 public:
  virtual ~Driver() = default;
  /// Runs one operation and returns the driver's result unchanged: 100 is success, 1 to 16 a communication
  /// failure, the driver defines the others. `CmConnect` and `CmDisconnect` ignore `controllerAddr`. Raises
  /// `err::fileNotFound` when the driver library is missing, `err::entryPointNotFound` when it lacks the
  /// export.
  virtual std::int16_t call(ComCommandsEnum command, std::int16_t stationId, std::int16_t controllerAddr) = 0;
  /// The operating system's last-error value as the last call left it; 0 when there was none.
  [[nodiscard]] virtual int lastError() const = 0;
};

}  // namespace voxa
