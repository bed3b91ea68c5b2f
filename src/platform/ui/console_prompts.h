#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ui/prompts.h"

namespace voxa {

/// Boxes and dialogs as lines of text. With a person at a terminal it asks; without one it takes the button
/// that does least (Cancel, No or Abort, of those that the box has; never Yes), and the file set beforehand,
/// and says so.
class ConsolePrompts : public Prompts {
 public:
  /// Reads answers from `in`, writes boxes to `out`; both must outlive this object. interactive: whether
  /// there is a person to answer.
  ConsolePrompts(std::istream& in, std::ostream& out, bool interactive);
  /// Whether the process's standard input and error output are a terminal.
  [[nodiscard]] static bool isTerminal();
  /// Whether that one is: 0 standard input, 1 standard output, 2 error output.
  [[nodiscard]] static bool isTerminal(int descriptor);
  /// Whether the process's standard output ends anywhere. On Windows a program without a console starts
  /// others that have none: what they print is not lost, since nobody asked for it.
  [[nodiscard]] static bool hasOutput();

  /// From now on every box that has this button is answered with it, unasked. Of several the first counts.
  void assume(Answer answer) { assumed_.push_back(answer); }
  /// The file that dialogs choose from now on, unasked; "" to ask again.
  void proposeFile(std::string path) { file_ = std::move(path); }

  Answer messageBox(const std::string& prompt, int style, const std::string& title) override;
  /// On a terminal the person is asked until the choice is allowed; an empty line is the proposed name, the
  /// end of input chooses none.
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
