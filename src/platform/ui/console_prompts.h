#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ui/prompts.h"

namespace voxa {

/// Boxes and dialogs as lines of text. It asks a person at a terminal. Without one it takes the button that
/// does least (Cancel, No or Abort if the box has it, never Yes) or the file that was set beforehand, and
/// says so. isTerminal and hasOutput are in terminal_posix.cpp and terminal_windows.cpp.
class ConsolePrompts : public Prompts {
 public:
  /// Reads answers from `in` and writes boxes to `out`; both must outlive this object. interactive: whether a
  /// person is there to answer.
  ConsolePrompts(std::istream& in, std::ostream& out, bool interactive);
  /// Whether the process's standard input and its error output are a terminal.
  [[nodiscard]] static bool isTerminal();
  /// Whether this descriptor is a terminal: 0 standard input, 1 standard output, 2 error output.
  [[nodiscard]] static bool isTerminal(int descriptor);
  /// How many places its lines have, 0 when it is no terminal or does not tell.
  [[nodiscard]] static int terminalWidth(int descriptor);
  /// Whether somebody gets what the process writes to its standard output. A Windows program without a
  /// console gives none to the programs that it starts: nobody has asked for their output, so it is not lost.
  [[nodiscard]] static bool hasOutput();

  /// From now on this button answers every box that has it, without a question. Of several the first counts.
  void assume(Answer answer) { assumed_.push_back(answer); }
  /// From now on dialogs choose this file without a question; "" to ask again.
  void proposeFile(std::string path) { file_ = std::move(path); }

  Answer messageBox(const std::string& prompt, int style, const std::string& title) override;
  /// Asks a person at a terminal until the choice is allowed. An empty line chooses the proposed name, the
  /// end of input chooses nothing.
  std::string chooseFile(const FileDialog& dialog) override;
  void busy(bool) override {}

 private:
  void show(std::string_view lines);
  std::optional<std::string> readLine();
  Answer ask(const std::vector<Answer>& buttons, Answer byDefault);
  bool accept(const std::string& path, const FileDialog& dialog);

  std::istream& in_;
  std::ostream& out_;
  bool interactive_;
  std::vector<Answer> assumed_;
  std::string file_;
};

}  // namespace voxa
