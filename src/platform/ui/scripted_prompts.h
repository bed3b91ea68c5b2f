#pragma once

#include <deque>
#include <string>
#include <vector>

#include "platform/ui/prompts.h"

namespace voxa {

/// Answers without a person, for tests and unattended use. It keeps what was shown and gives the answers that
/// were queued.
class ScriptedPrompts : public Prompts {
 public:
  struct Box {
    std::string prompt;
    int style = 0;
    std::string title;
  };

  std::vector<Box> boxes;           ///< every message box shown, in order
  std::vector<FileDialog> dialogs;  ///< every file dialog shown, in order
  std::deque<Answer> answers;       ///< for the next boxes; when empty the default button is pressed
  std::deque<std::string> choices;  ///< for the next dialogs; when empty none is chosen
  int busyDepth = 0;                ///< busy pointers shown and not yet ended

  /// Raises `err::internalError` when the box has no button for the queued answer: then the script does not
  /// fit.
  Answer messageBox(const std::string& prompt, int style, const std::string& title) override;
  std::string chooseFile(const FileDialog& dialog) override;
  void busy(bool on) override { busyDepth += on ? 1 : -1; }
};

}  // namespace voxa
