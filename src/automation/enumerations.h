#pragma once

#include "comm/com_types.h"
#include "korva.h"

namespace voxa::automation {

/// The library's enumerations behind those of the interface. Numbers that are none of them raise
/// `err::invalidArgument`.
[[nodiscard]] ComCommandsEnum commandOf(::ComCommandsEnum command);
[[nodiscard]] ComponentType componentOf(::ComponentType component);

}  // namespace voxa::automation
