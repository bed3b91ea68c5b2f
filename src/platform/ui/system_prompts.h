#pragma once

#include <memory>

namespace voxa {

class Prompts;

/// The prompts of the process. On Windows, where the process has a visible desktop, they are message boxes,
/// file dialogs and the hourglass. Elsewhere they are lines of text. On Windows the environment variable
/// VOXA_PROMPTS decides instead when it is "console" or "windows". It is in system_prompts_posix.cpp and
/// system_prompts_windows.cpp.
[[nodiscard]] std::unique_ptr<Prompts> makeSystemPrompts();

}  // namespace voxa
