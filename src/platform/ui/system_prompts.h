#pragma once

#include <memory>

namespace voxa {

class Prompts;

/// The prompts of the process: on Windows message boxes, file dialogs and the hourglass where the process has
/// a visible desktop, lines of text elsewhere. The environment variable VOXA_PROMPTS decides instead when it
/// is "console" or "windows".
[[nodiscard]] std::unique_ptr<Prompts> makeSystemPrompts();

}  // namespace voxa
