#pragma once

#include <cstdint>

namespace voxa {

class Context;

/// The driver's nine operations, arguments and results passed through unchanged (100 is success; 95 and 0
/// are addresses like any other here). No retry, no delay, no check. A driver library that cannot be loaded
/// raises `err::fileNotFound` or `err::entryPointNotFound`.
class Inter {
 public:
  explicit Inter(Context& context) : context_(context) {}

  std::int16_t readDate(std::int16_t StationID, std::int16_t ControllerAddr) const;
  std::int16_t connect(std::int16_t StationID) const;
  std::int16_t disconnect(std::int16_t StationID) const;
  std::int16_t sendDate(std::int16_t StationID, std::int16_t ControllerAddr) const;
  std::int16_t readStatus(std::int16_t StationID, std::int16_t ControllerAddr) const;
  std::int16_t sendClear(std::int16_t StationID, std::int16_t ControllerAddr) const;
  std::int16_t sendCommand(std::int16_t StationID, std::int16_t ControllerAddr) const;
  std::int16_t resetReadingPointer(std::int16_t StationID, std::int16_t ControllerAddr) const;
  std::int16_t readMemory(std::int16_t StationID, std::int16_t ControllerAddr) const;

 private:
  Context& context_;
};

}  // namespace voxa
