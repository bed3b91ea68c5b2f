#include <iostream>

#include "platform/ui/console_prompts.h"
#include "platform/ui/system_prompts.h"

namespace voxa {

std::unique_ptr<Prompts> makeSystemPrompts() {
  return std::make_unique<ConsolePrompts>(std::cin, std::cerr, ConsolePrompts::isTerminal());
}

}  // namespace voxa
