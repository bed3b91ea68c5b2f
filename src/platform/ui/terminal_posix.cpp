#include <sys/ioctl.h>
#include <unistd.h>

#include "platform/ui/console_prompts.h"

namespace voxa {

bool ConsolePrompts::isTerminal() {
  return isTerminal(STDIN_FILENO) && isTerminal(STDERR_FILENO);
}

bool ConsolePrompts::isTerminal(int descriptor) {
  return ::isatty(descriptor) == 1;
}

int ConsolePrompts::terminalWidth(int descriptor) {
  winsize size{};
  return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool ConsolePrompts::hasOutput() {
  return true;  // somebody wants the output even where the shell has closed it
}

}  // namespace voxa
