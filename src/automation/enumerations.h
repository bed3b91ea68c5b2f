#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "comm/com_types.h"
#include "korva.h"

namespace voxa::automation {

/// These convert the interface's enumerations to the library's. A number that is in neither is handed on, and
/// the library tells of it. One beyond 16 bits becomes the nearest limit: cut to 16 bits it could become a
/// valid number.
[[nodiscard]] inline std::int16_t narrowed(int value) {
  using Limits = std::numeric_limits<std::int16_t>;
  return static_cast<std::int16_t>(std::clamp<int>(value, Limits::min(), Limits::max()));
}
[[nodiscard]] inline ComCommandsEnum commandOf(::ComCommandsEnum command) {
  return static_cast<ComCommandsEnum>(narrowed(command));
}
[[nodiscard]] inline ComponentType componentOf(::ComponentType component) {
  return static_cast<ComponentType>(narrowed(component));
}

}  // namespace voxa::automation
