// voxa card last-unknown: how the code of a new card gets in.

#include <iostream>

#include "card_commands.h"
#include "component.h"
#include "line_question.h"
#include "lines/code.h"
#include "output/command_line.h"
#include "platform/database/database.h"
#include "session.h"
#include "work/look_up.h"
#include "work/reading.h"
#include "work/transaction_type.h"

namespace voxa::cli {

namespace {

void showLastUnknown(Session& session, const std::string& reader) {
  session.openForSending();
  const std::string name = readerNamed(session.library(), reader)->get("Name").toText();
  LineTest test;
  const bool answers = readerAnswers(session, name, test);
  const UnknownCard card = takeLastUnknownCard(session.library(), name, answers);
  session.show(card.report);
  if (!card.code.empty()) std::cout << shownCode(card.code) << '\n';
}

}  // namespace

void addLastUnknownCommand(Command& group, Session& session) {
  auto* command = group.add_subcommand(
      "last-unknown", "Print the code of the unknown card that a reader saw last today, for 'voxa card add'");
  auto reader = std::make_shared<std::string>();
  command->add_option("--reader", *reader, "The reader, whose controller is read first")->required();
  command->footer(
      "The transaction leaves the journal: the next call prints the one before.\n"
      "Examples:\n  voxa card last-unknown --reader \"Main entrance\"\n  voxa card last-unknown --reader "
      "Garage");
  command->callback([&session, reader] { showLastUnknown(session, *reader); });
}

}  // namespace voxa::cli
