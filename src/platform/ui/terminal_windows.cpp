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

int ConsolePrompts::terminalWidth(int descriptor) {
  CONSOLE_SCREEN_BUFFER_INFO console{};
  const HANDLE handle = ::GetStdHandle(descriptor == 2 ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
  return ::GetConsoleScreenBufferInfo(handle, &console) == 0 ? 0 : console.dwSize.X;
}

bool ConsolePrompts::hasOutput() {
  // A console that is gone, or was never there, still counts as a character device, but has no mode.
  const HANDLE output = ::GetStdHandle(STD_OUTPUT_HANDLE);
  const DWORD type = ::GetFileType(output);
  DWORD mode = 0;
  return type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE || ::GetConsoleMode(output, &mode) != 0;
}

}  // namespace voxa
