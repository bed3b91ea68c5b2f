#include <io.h>
#include <windows.h>

#include "platform/ui/console_prompts.h"

namespace voxa {

bool ConsolePrompts::isTerminal() {
  return isTerminal(0) && isTerminal(2);
}

bool ConsolePrompts::isTerminal(int descriptor) {
  return ::_isatty(descriptor) != 0;
}

bool ConsolePrompts::hasOutput() {
  return ::GetFileType(::GetStdHandle(STD_OUTPUT_HANDLE)) != FILE_TYPE_UNKNOWN;
}

}  // namespace voxa
