#include "platform/ui/prompts.h"

#include <array>
#include <cstddef>

namespace voxa {

std::vector<Answer> buttonsOf(int style) {
  switch (style & style::buttonMask) {
    case 1:
      return {Answer::ok, Answer::cancel};
    case style::abortRetryIgnore:
      return {Answer::abort, Answer::retry, Answer::ignore};
    case style::yesNoCancel:
      return {Answer::yes, Answer::no, Answer::cancel};
    case style::yesNo:
      return {Answer::yes, Answer::no};
    case 5:
      return {Answer::retry, Answer::cancel};
    default:
      return {Answer::ok};
  }
}

std::string_view buttonText(Answer answer) {
  constexpr std::array<std::string_view, 7> texts = {"OK", "Cancel", "Abort", "Retry", "Ignore", "Yes", "No"};
  return texts.at(static_cast<std::size_t>(answer) - 1);
}

Answer defaultAnswer(int style) {
  const auto buttons = buttonsOf(style);
  const auto index = static_cast<std::size_t>((style & style::defaultMask) / style::secondDefault);
  return index < buttons.size() ? buttons[index] : buttons.front();
}

}  // namespace voxa
