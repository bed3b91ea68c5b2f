// voxa card restore, purge: deleted cards. 'voxa card delete' is in card_batch.cpp.

#include <iostream>

#include "card_commands.h"
#include "loss_question.h"
#include "output/command_line.h"
#include "session.h"
#include "work/deleted_cards.h"

namespace voxa::cli {

namespace {

struct RestoreOptions {
  std::string card;
  Restoring how;
};

void restore(Session& session, const RestoreOptions& options) {
  session.openForSending();
  const std::int16_t number = restoreCard(session.library(), options.card, options.how);
  std::cout << "Card " << number << " is given back, to be sent with 'voxa download'\n";
}

void purge(Session& session, const std::string& card) {
  session.openForSending();
  const Purge purge = requirePurgeable(session.library(), card);
  requireYes(session, "Remove " + purge.card + " for good? It cannot be given back then.");
  purgeCard(session.library(), purge);
  std::cout << "Removed " << purge.card << "; its name, number and code are free\n";
}

}  // namespace

void addDeletedCardCommands(Command& group, Session& session) {
  auto* restoring = group.add_subcommand("restore", "Give a deleted card back");
  auto restored = std::make_shared<RestoreOptions>();
  restoring->add_option("CARD", restored->card, "Number or name of the deleted card")->required();
  restoring->add_option("--number", restored->how.number, "Another number, when a card has its own now");
  restoring->add_option("--group", restored->how.group, "Another access group than it is in");
  restoring->footer(
      "Deleted cards are told by 'voxa card list --deleted'.\n"
      "Examples:\n  voxa card restore \"Ann Lee\"\n  voxa card restore 12 --number 301 --group Staff");
  restoring->callback([&session, restored] { restore(session, *restored); });

  auto* purging = group.add_subcommand(
      "purge", "Remove a deleted card for good, so that its name, number and code are free");
  auto purged = std::make_shared<std::string>();
  purging->add_option("CARD", *purged, "Number or name of the deleted card")->required();
  purging->footer(
      "It is refused while a controller may still hold the card. It asks; without a terminal it needs "
      "--yes.\n"
      "What the journal says of the card stays, and is found by its name.\n"
      "Examples:\n  voxa card purge \"Ann Lee\"\n  voxa --yes card purge 12");
  purging->callback([&session, purged] { purge(session, *purged); });
}

}  // namespace voxa::cli
