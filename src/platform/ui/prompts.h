#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace voxa {

/// Message-box styles, as automation clients add them: buttons + icon + default button.
namespace style {
inline constexpr int okOnly = 0;
inline constexpr int abortRetryIgnore = 2;
inline constexpr int yesNoCancel = 3;
inline constexpr int yesNo = 4;
inline constexpr int critical = 16;
inline constexpr int question = 32;
inline constexpr int exclamation = 48;
inline constexpr int secondDefault = 256;
inline constexpr int buttonMask = 15;
inline constexpr int iconMask = 112;
inline constexpr int defaultMask = 768;
}  // namespace style

/// The button pressed, with the numbers automation clients know.
enum class Answer { ok = 1, cancel = 2, abort = 3, retry = 4, ignore = 5, yes = 6, no = 7 };

/// One file dialog: the settings of the common dialog control.
struct FileDialog {
  std::string title;
  std::string proposedName;  ///< path shown first; may be empty
  std::string filter;        ///< description and pattern separated by "|", e.g. "Text (*.txt)|*.txt"
  int flags = 0;             ///< the common dialog's flag bits
  bool save = true;          ///< a save dialog; false: an open dialog

  /// Flag bits used by the library (the common dialog control's published values).
  static constexpr int overwritePrompt = 2;
  static constexpr int noChangeDir = 8;
  static constexpr int pathMustExist = 2048;
  static constexpr int fileMustExist = 4096;
};

/// The seam to the person in front of the system.
class Prompts {
 public:
  virtual ~Prompts() = default;
  /// Shows `prompt` (lines separated by CR LF) under `title`, with the buttons, icon and default button of
  /// `style`. Waits and returns the button that was pressed. When the person closed the box, or nobody is
  /// there, returns one that does nothing: Cancel, No or Abort if the box has it.
  virtual Answer messageBox(const std::string& prompt, int style, const std::string& title) = 0;
  /// Returns the path chosen, or "" when none was.
  virtual std::string chooseFile(const FileDialog& dialog) = 0;
  /// Shows (true) or ends (false) the busy pointer.
  virtual void busy(bool on) = 0;
};

/// The buttons of a style, in the order shown; only OK for a style that has no meaning.
[[nodiscard]] std::vector<Answer> buttonsOf(int style);
/// What is written on a button: "OK", "Cancel" ... "No".
[[nodiscard]] std::string_view buttonText(Answer answer);

/// The button that the Return key presses: the first, second or third of the style's buttons.
[[nodiscard]] Answer defaultAnswer(int style);

/// Shows the busy pointer for the lifetime of this object.
class BusyPointer {
 public:
  explicit BusyPointer(Prompts& prompts) : prompts_(prompts) { prompts_.busy(true); }
  ~BusyPointer() { prompts_.busy(false); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  Prompts& prompts_;
};

}  // namespace voxa
