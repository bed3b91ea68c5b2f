#include "loss_question.h"

#include "platform/ui/prompts.h"
#include "session.h"
#include "work/refusal.h"

namespace voxa::cli {

void requireYes(Session& session, const std::string& question) {
  if (session.settings.answersYes()) return;
  if (!ConsolePrompts::isTerminal())
    throw Refusal(question + " Without a terminal to ask on it needs --yes, in front of the command");
  const int buttons = style::yesNo + style::question + style::secondDefault;
  if (session.prompts().messageBox(question, buttons, "VOXA") != Answer::yes)
    throw Refusal("nothing is changed");
}

}  // namespace voxa::cli
