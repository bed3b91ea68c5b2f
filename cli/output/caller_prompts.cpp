#include "caller_prompts.h"

#include <iostream>

namespace voxa::cli {

CallerPrompts::CallerPrompts() : ConsolePrompts(std::cin, std::cerr, isTerminal()) {}

void CallerPrompts::files(const std::string& toSave, const std::string& toOpen) {
  toSave_ = toSave;
  toOpen_ = toOpen;
}

Answer CallerPrompts::messageBox(const std::string& prompt, int style, const std::string& title) {
  if (prepared_.empty() || (style & style::buttonMask) == style::okOnly)
    return ConsolePrompts::messageBox(prompt, style, title);
  ConsolePrompts::messageBox(prompt, style::okOnly, title);
  const Answer answer = prepared_.front();
  prepared_.pop_front();
  std::cerr << "Taking " << buttonText(answer) << ".\n";
  return answer;
}

std::string CallerPrompts::chooseFile(const FileDialog& dialog) {
  proposeFile(dialog.save ? toSave_ : toOpen_);
  FileDialog asked = dialog;
  // The library proposes the file that is to be saved; a line left empty must not mean that very file.
  if (isProtected_(asked.proposedName)) asked.proposedName.clear();
  const std::string chosen = ConsolePrompts::chooseFile(asked);
  if (chosen.empty() || !isProtected_(chosen)) return chosen;
  messageBox(chosen + " belongs to the installation: name another file", style::okOnly | style::critical, "");
  return "";
}

}  // namespace voxa::cli
