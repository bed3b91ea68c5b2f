#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "comm/com_types.h"
#include "korva.h"

namespace voxa::automation {

/// The library's enumerations behind those of the interface. A number that is none of theirs stays one, for
/// the library to tell of: none is cut to 16 bits into a number that is.
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
