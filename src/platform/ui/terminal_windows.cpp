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
  // A console that is gone, or was never there, still counts as a character device, but has no mode.
  const HANDLE output = ::GetStdHandle(STD_OUTPUT_HANDLE);
  const DWORD type = ::GetFileType(output);
  DWORD mode = 0;
  return type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE || ::GetConsoleMode(output, &mode) != 0;
}

}  // namespace voxa
