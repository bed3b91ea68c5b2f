#include <io.h>

#include <cstdio>

#include "platform/ui/console_prompts.h"

namespace voxa {

bool ConsolePrompts::isTerminal() {
  return ::_isatty(::_fileno(stdin)) != 0 && ::_isatty(::_fileno(stderr)) != 0;
}

}  // namespace voxa
