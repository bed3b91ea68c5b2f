#include "platform/ui/scripted_prompts.h"

#include <algorithm>

#include "platform/error.h"

namespace voxa {

Answer ScriptedPrompts::messageBox(const std::string& prompt, int style, const std::string& title) {
  boxes.push_back({prompt, style, title});
  if (answers.empty()) return defaultAnswer(style);
  const Answer answer = answers.front();
  answers.pop_front();
  const auto buttons = buttonsOf(style);
  if (std::find(buttons.begin(), buttons.end(), answer) == buttons.end()) {
    throw Error(err::internalError,
                "The box has no button " + std::string(buttonText(answer)) + ": " + prompt);
  }
  return answer;
}

std::string ScriptedPrompts::chooseFile(const FileDialog& dialog) {
  dialogs.push_back(dialog);
  if (choices.empty()) return {};
  std::string choice = choices.front();
  choices.pop_front();
  return choice;
}

}  // namespace voxa
