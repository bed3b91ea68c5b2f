// voxa card block, unblock, replace: a card at the desk, of which the controllers are told at once.

#include <iostream>

#include "card_commands.h"
#include "output/command_line.h"
#include "session.h"
#include "work/card_blocking.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct BlockOptions {
  std::string card;
  CardTexts texts;
  Telling how;
};

/// done: what was reached ("erased on every controller that had it"). open: what is still so where it was
/// not.
void report(const ToldCard& card, const std::string& done, const std::string& open) {
  const std::string which = "card " + std::to_string(card.number) + " (" + card.name + ")";
  if (!card.notTold.empty())
    throw Leftover("no controller was told of " + which + ", " + open + ": " + card.notTold);
  if (card.left.empty()) {
    std::cout << which << ": " << done << '\n';
    return;
  }
  throw Leftover(which + ": these controllers were not told, " + open +
                 "; 'voxa download' tells them:" + eachOnALine(card.left));
}

void block(Session& session, const BlockOptions& options) {
  session.openForSending();
  report(blockCard(session.library(), options.card, options.how),
         "blocked, and erased on every controller that had it", "which may still open to it");
}

void unblock(Session& session, const BlockOptions& options) {
  session.openForSending();
  report(unblockCard(session.library(), options.card, options.how), "valid again, and sent",
         "which do not open to it yet");
}

void replace(Session& session, const BlockOptions& options) {
  session.openForSending();
  report(replaceCard(session.library(), options.card, options.texts, options.how),
         "the old card opens nothing any more, and the new one is sent",
         "which may still open to the old card");
}

void addCommonOptions(Command& command, BlockOptions& options) {
  command.add_option("CARD", options.card, "Number or name of the card")->required();
  command.add_flag("--dial", options.how.dial, "Call the stations with a telephone number, too");
}

}  // namespace

void addCardBlockingCommands(Command& group, Session& session) {
  auto* blocking =
      group.add_subcommand("block", "A lost card: it is not valid any more, and erased everywhere");
  auto blocked = std::make_shared<BlockOptions>();
  addCommonOptions(*blocking, *blocked);
  blocking->footer(
      "Nobody is asked. A controller that does not answer is named, and stays in the plan: it opens to the "
      "card\n"
      "until a later 'voxa download' reaches it. The card's row stays, for 'unblock' or 'replace'.\n"
      "Examples:\n  voxa card block \"Ann Lee\"\n  voxa card block 12 --dial");
  blocking->callback([&session, blocked] { block(session, *blocked); });

  auto* unblocking = group.add_subcommand("unblock", "A blocked card is valid again, and sent");
  auto unblocked = std::make_shared<BlockOptions>();
  addCommonOptions(*unblocking, *unblocked);
  unblocking->footer("Examples:\n  voxa card unblock \"Ann Lee\"\n  voxa card unblock 12 --dial");
  unblocking->callback([&session, unblocked] { unblock(session, *unblocked); });

  auto* replacing =
      group.add_subcommand("replace", "Another card for the same person, in place of a lost one");
  auto replaced = std::make_shared<BlockOptions>();
  addCommonOptions(*replacing, *replaced);
  replacing->add_option("--code", replaced->texts.code, "Code of the new card")->required();
  replacing->add_option("--number", replaced->texts.number,
                        "Another number, which needs every controller's answer; it stays unless given");
  replacing->add_option("--until", replaced->texts.until, "Last valid day of the new card; or none");
  replacing->footer(
      "The old card is blocked and erased first, as 'voxa card block' does it; then the new one is sent.\n"
      "Examples:\n  voxa card replace \"Ann Lee\" --code 4812\n  voxa card replace 12 --code 4812 --number "
      "301");
  replacing->callback([&session, replaced] { replace(session, *replaced); });
}

}  // namespace voxa::cli
