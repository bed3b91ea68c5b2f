#pragma once

#include <cstdint>
#include <utility>

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

/// Reserved controller addresses.
enum ComSpecialController : std::int16_t {
  CmToEachController = 0,  ///< station-wide: each controller that answered, in turn
  CmToAllControllers = 95  ///< broadcast on the station's line; nobody acknowledges
};

/// Station and address of a controller.
using ControllerPlace = std::pair<std::int16_t, std::int16_t>;

/// Bit flags of every download.
enum DownloadParams : std::int16_t {
  DLDefault = 0,
  DLFull = 1,       ///< send even rows whose flags are clear
  DLNoMessage = 2,  ///< no message box on failure
  DLMemErased = 4   ///< the controller's memory was erased
};

}  // namespace voxa
