// voxa card batch, delete, invalidate: the changes of cards that reach the controllers at once.

#include <iostream>

#include "card_commands.h"
#include "component.h"
#include "line_question.h"
#include "output/command_line.h"
#include "session.h"
#include "work/card_batch.h"
#include "work/card_erasing.h"
#include "work/card_values.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct BatchOptions {
  CardBatchTexts texts;
  bool codesAsNames = false;
};

/// Asks the component's controllers, and the person when some do not answer.
void test(Session& session, const Component& component) {
  const std::optional<LineTest> test = testedLines(session, component);
  if (!test) throw Refusal("aborted: nothing was sent");
  passOver(session.library(), test->silent);
}

void createBatch(Session& session, const BatchOptions& options) {
  session.openForSending();
  const CardBatch batch(session.library(), options.texts);
  test(session, {});
  const CreatedBatch result = createCards(session.library(), batch, options.codesAsNames);
  session.show(result.notices);
  if (!result.created) return;
  std::cout << "Cards " << batch.first << " to " << batch.first + batch.count - 1
            << " are created and sent\n";
  if (result.silent.empty()) return;
  throw Leftover("these controllers did not answer, and the cards stay marked for those of the group:" +
                 eachOnALine(result.silent));
}

void deleteOne(Session& session, const std::string& numberOrName) {
  session.openForSending();
  const std::int16_t number = numberOfCard(session.library(), numberOrName);
  test(session, {});
  const ErasedCard card = deleteCard(session.library(), number);
  session.show(card.notices);
  if (!card.erased) return;
  std::cout << "Deleted card " << number << ": " << card.name << '\n';
  if (card.holders.empty()) return;
  throw Leftover("these controllers still hold the card; a later 'voxa download' makes them erase it:" +
                 eachOnALine(card.holders));
}

void invalidate(Session& session, const std::string& text, const ComponentChoice& choice) {
  session.openForSending();
  const std::int16_t number = cardNumber(text);
  const Component component = chosen(session, choice);
  test(session, component);
  const ErasedCard card = invalidateCard(session.library(), number, component);
  session.show(card.notices);
  if (!card.erased) return;
  if (!card.holders.empty()) {
    throw Leftover("these controllers did not answer and still hold the card:" + eachOnALine(card.holders));
  }
  std::cout << "Erased card " << number << "; the next download gives it back\n";
}

}  // namespace

void addCardClearingCommands(Command& group, Session& session) {
  auto* batch = group.add_subcommand("batch", "Create consecutive cards and send them, all or none");
  auto created = std::make_shared<BatchOptions>();
  batch->add_option("--first-number", created->texts.firstNumber, "Number of the first card, 1 to 9999")
      ->required();
  batch->add_option("--first-code", created->texts.firstCode, "Code of the first card, 1 to 8 digits")
      ->required();
  batch->add_option("--count", created->texts.count, "How many cards")->required();
  batch->add_option("--group", created->texts.group, "Name or number of their access group")->required();
  batch->add_flag("--codes-as-names", created->codesAsNames, "Their names are their codes");
  batch->footer(
      "Examples:\n"
      "  voxa card batch --first-number 100 --first-code 52000 --count 50 --group Visitors\n"
      "  voxa card batch --first-number 1 --first-code 700 --count 20 --group Staff --codes-as-names");
  batch->callback([&session, created] { createBatch(session, *created); });

  auto* deleting = group.add_subcommand("delete", "Erase a card on every controller and delete it");
  auto deleted = std::make_shared<std::string>();
  deleting->add_option("CARD", *deleted, "Number or name of the card")->required();
  deleting->footer(
      "Its name and code stay in use until it is purged; 'voxa card restore' gives it back.\n"
      "Examples:\n  voxa card delete \"Ann Lee\"\n  voxa card delete 12");
  deleting->callback([&session, deleted] { deleteOne(session, *deleted); });

  auto* invalidating = group.add_subcommand(
      "invalidate", "Erase a card number on controllers; its card stays, marked to be sent again");
  auto number = std::make_shared<std::string>();
  auto choice = std::make_shared<ComponentChoice>();
  invalidating->add_option("NUMBER", *number, "The card number")->required();
  addComponentOptions(*invalidating, *choice);
  invalidating->footer(
      "Examples:\n  voxa card invalidate 12 --station Annex\n  voxa card invalidate 12 --reader \"Main "
      "entrance\"");
  invalidating->callback([&session, number, choice] { invalidate(session, *number, *choice); });
}

}  // namespace voxa::cli
