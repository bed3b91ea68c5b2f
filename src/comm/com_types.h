#pragma once

#include <cstdint>
#include <string>

#include "platform/driver/driver.h"
#include "platform/error.h"

namespace voxa {

/// Target of a send, download or test; with CTReader and CTStation the component is named by its `Name`.
enum ComponentType : std::int16_t { CTActiveStations = 0, CTReader = 1, CTStation = 2 };

/// Whether it is one of them: automation clients can pass any number.
[[nodiscard]] constexpr bool isKnown(ComponentType compType) {
  return compType >= CTActiveStations && compType <= CTStation;
}
/// Raises `err::invalidArgument` for any other.
inline void requireKnown(ComponentType compType) {
  if (isKnown(compType)) return;
  throw Error(err::invalidArgument, "Invalid argument: no such component type");
}

/// Where something is sent, or what a test concerns.
struct Component {
  ComponentType type = CTActiveStations;
  std::string name = {};  ///< of the station or reader
};

/// Reserved controller addresses.
enum ComSpecialController : std::int16_t {
  CmToEachController = 0,  ///< station-wide: each controller that answered, in turn
  CmToAllControllers = 95  ///< broadcast on the station's line; nobody acknowledges
};

/// Whether an address is that of one controller of a line.
[[nodiscard]] constexpr bool isOfController(int address) {
  return address >= 1 && address <= 16;
}
/// The driver knows controller 1 as 41, and so on; other addresses are the same to it.
inline constexpr std::int16_t driverAddressOffset = 40;
inline constexpr std::int16_t driverSuccess = 100;  ///< of every operation

/// Where a controller is.
struct ControllerPlace {
  std::int16_t station = 0;
  std::int16_t address = 0;  ///< on the station's line, 1 to 16, or one of ComSpecialController
  friend bool operator==(const ControllerPlace&, const ControllerPlace&) = default;
  friend bool operator<(const ControllerPlace& one, const ControllerPlace& other) {
    return one.station != other.station ? one.station < other.station : one.address < other.address;
  }
};

/// Bit flags of every download.
enum DownloadParams : std::int16_t {
  DLDefault = 0,
  DLFull = 1,       ///< send even rows whose flags are clear
  DLNoMessage = 2,  ///< no message box on failure
  DLMemErased = 4   ///< the controller's memory was erased
};

}  // namespace voxa
