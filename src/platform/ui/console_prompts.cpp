#include "platform/ui/console_prompts.h"

#include <algorithm>
#include <istream>
#include <ostream>

#include "platform/files.h"
#include "platform/text.h"

namespace voxa {
namespace {

bool has(const std::vector<Answer>& buttons, Answer answer) {
  return std::find(buttons.begin(), buttons.end(), answer) != buttons.end();
}

/// The answer to a box when nobody is there. Nothing is replaced or deleted without a person's word.
Answer leastAnswer(const std::vector<Answer>& buttons) {
  for (const Answer least : {Answer::cancel, Answer::no, Answer::abort}) {
    if (has(buttons, least)) return least;
  }
  return buttons.front();
}

/// "Yes, No or Cancel"
std::string listed(const std::vector<Answer>& buttons) {
  std::string out;
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    if (i > 0) out += i + 1 == buttons.size() ? " or " : ", ";
    out += buttonText(buttons[i]);
  }
  return out;
}

std::string folderOf(const std::string& path) {
  const auto separator = path.find_last_of("/\\");
  return separator == std::string::npos ? std::string(".") : path.substr(0, separator + 1);
}

}  // namespace

ConsolePrompts::ConsolePrompts(std::istream& in, std::ostream& out, bool interactive)
    : in_(in), out_(out), interactive_(interactive) {}

/// Writes lines, whatever their line ends.
void ConsolePrompts::show(std::string_view lines) {
  std::string text;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i] == '\r' && i + 1 < lines.size() && lines[i + 1] == '\n') continue;
    text += lines[i] == '\r' ? '\n' : lines[i];
  }
  out_ << terminalText(text);
}

std::optional<std::string> ConsolePrompts::readLine() {
  std::string line;
  out_.flush();
  if (std::getline(in_, line)) return trimmed(line);
  in_.clear();  // a terminal can be asked again after its end of input
  out_ << '\n';
  return std::nullopt;
}

Answer ConsolePrompts::ask(const std::vector<Answer>& buttons, Answer byDefault) {
  for (;;) {
    show(listed(buttons) + "? [" + std::string(buttonText(byDefault)) + "] ");
    const auto line = readLine();
    if (!line) return leastAnswer(buttons);
    if (line->empty()) return byDefault;
    for (const Answer button : buttons) {
      const std::string_view text = buttonText(button);
      if (equalNoCase(*line, text) || equalNoCase(*line, text.substr(0, 1))) return button;
    }
    show("Please answer " + listed(buttons) + ".\n");
  }
}

Answer ConsolePrompts::messageBox(const std::string& prompt, int style, const std::string& title) {
  const auto buttons = buttonsOf(style);
  if (!title.empty()) show("[" + title + "]\n");
  show(prompt + '\n');
  if (buttons.size() == 1) return buttons.front();
  for (const Answer answer : assumed_) {
    if (!has(buttons, answer)) continue;
    show("Taking " + std::string(buttonText(answer)) + ".\n");
    return answer;
  }
  if (interactive_) return ask(buttons, defaultAnswer(style));
  const Answer least = leastAnswer(buttons);
  show("No terminal to ask on: taking " + std::string(buttonText(least)) + ".\n");
  return least;
}

/// Whether the dialog may return the path. If not, shows why.
bool ConsolePrompts::accept(const std::string& path, const FileDialog& dialog) {
  const bool fileMustExist = (dialog.flags & FileDialog::fileMustExist) != 0;
  if (files::folderExists(path)) {
    show("\"" + path + "\" is a folder, not a file.\n");
    return false;
  }
  if (fileMustExist && !files::exists(path)) {
    show("The file \"" + path + "\" does not exist.\n");
    return false;
  }
  if ((dialog.flags & FileDialog::pathMustExist) != 0 && !files::folderExists(folderOf(path))) {
    show("The folder of \"" + path + "\" does not exist.\n");
    return false;
  }
  if (!dialog.save || (dialog.flags & FileDialog::overwritePrompt) == 0 || !files::exists(path)) return true;
  return messageBox("The file \"" + path + "\" already exists. Replace it?",
                    style::yesNo + style::exclamation + style::secondDefault, dialog.title) == Answer::yes;
}

std::string ConsolePrompts::chooseFile(const FileDialog& dialog) {
  if (!file_.empty()) return accept(file_, dialog) ? file_ : std::string();
  if (!dialog.title.empty()) show("[" + dialog.title + "]\n");
  if (!interactive_) {
    show("No terminal to ask for a file on: none is chosen.\n");
    return {};
  }
  for (;;) {
    show("File name? [" + dialog.proposedName + "] ");
    const auto line = readLine();
    if (!line) return {};
    const std::string& path = line->empty() ? dialog.proposedName : *line;
    if (path.empty() || accept(path, dialog)) return path;
  }
}

}  // namespace voxa
