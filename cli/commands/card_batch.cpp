// voxa card batch, delete, invalidate: the changes of cards that reach the controllers at once.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

#include "access/card_doors.h"
#include "access/card_record.h"
#include "access/cardholder.h"
#include "app/qdb.h"
#include "card_commands.h"
#include "comm/com.h"
#include "component.h"
#include "download.h"
#include "messages/strings.h"
#include "session.h"
#include "work/card_values.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct BatchOptions {
  std::string firstNumber, firstCode, count, group;
  bool codesAsNames = false;
};

/// Asks the component's controllers, and the person when some do not answer.
Download tested(Session& session, const Component& component) {
  Download download(session, component);
  if (!download.ready()) throw Refusal("aborted: nothing was sent");
  return download;
}

void createBatch(Session& session, const BatchOptions& options) {
  session.openForSending();
  const std::int16_t first = cardNumber(options.firstNumber);
  const std::int16_t count = numberWithin("the number of cards", options.count, 1, 9999);
  (void)cardNumber(std::to_string(first + count - 1));
  (void)cardCode(options.firstCode);
  const std::int16_t group = GroupNames(session.library()).id(options.group);
  const Download download = tested(session, {});
  if (session.qdb().Cardholders().createGroup(first, options.firstCode, count, group, options.codesAsNames) !=
      0) {
    return;  // the reason has been shown
  }
  std::cout << "Cards " << first << " to " << first + count - 1 << " are created and sent\n";
  const auto waiting = session.rows("select Id from Cardholders where CardCodeFlagD = true and CardNum = " +
                                    std::to_string(first) + " and Deleted = false");
  if (!download.leftOut().empty() && !waiting->eof()) {
    throw Leftover("these controllers did not answer, and the cards stay marked for those of the group:" +
                   eachOnALine(download.leftOut()));
  }
}

// The controllers of the card's group that cannot erase it now: their line is not in use, or they do not
// answer.
std::vector<std::string> holdersOf(Session& session, const Recordset& card) {
  std::vector<std::string> names;
  const Value group = card.get("AccessGroupId");
  Com& com = session.com();
  if (com.inhibitCom) return names;
  for (const GrantedController& controller :
       controllersOf(session.qdb().database(), group.isNull() ? std::int16_t{0} : group.toInt16())) {
    if (controller.active && com.TestSend(controller.station, controller.address)) continue;
    names.push_back(com.getName(controller.station, controller.address));
  }
  return names;
}

void deleteCard(Session& session, const std::string& numberOrName) {
  session.openForSending();
  const auto card = cardNamed(session.library(), numberOrName);
  const std::int16_t number = card->get("CardNum").toInt16();
  const Download download = tested(session, {});
  const std::vector<std::string> holders = holdersOf(session, *card);
  markWhole(session.library(), {number});
  if (session.qdb().Cardholders().delete_(number) != 0) return;  // the reason has been shown
  card->edit();
  card->set("Deleted", true);
  for (std::size_t part = 0; part < cardPartCount; ++part) {
    card->set(flagColumn(part), part == cardCodePart && !holders.empty());
  }
  card->update();
  std::cout << "Deleted card " << number << ": " << card->get("Name").toText() << '\n';
  if (holders.empty()) return;
  throw Leftover("these controllers still hold the card; a later 'voxa download cards' makes them erase it:" +
                 eachOnALine(holders));
}

void invalidateCard(Session& session, const std::string& text, const ComponentChoice& choice) {
  session.openForSending();
  const std::int16_t number = cardNumber(text);
  const Component component = chosen(session, choice);
  const Download download = tested(session, component);
  markWhole(session.library(), {number});
  const int failures = session.prompts().failuresShown();
  const std::int16_t status = session.qdb().Cardholders().invalidate(number, component.type, component.name);
  if (status != 0) {
    const std::string reason = session.com().popErrorList();
    if (session.prompts().failuresShown() == failures) {
      session.strings().display("msgCantSendCommand", "voxa card invalidate", Value(reason));
    }
    return;
  }
  if (!download.leftOut().empty()) {
    throw Leftover("these controllers did not answer and still hold the card:" +
                   eachOnALine(download.leftOut()));
  }
  std::cout << "Erased card " << number << "; the next download gives it back\n";
}

}  // namespace

void addCardClearingCommands(CLI::App& group, Session& session) {
  auto* batch = group.add_subcommand("batch", "Create consecutive cards and send them, all or none");
  auto created = std::make_shared<BatchOptions>();
  batch->add_option("--first-number", created->firstNumber, "Number of the first card, 1 to 9999")
      ->required();
  batch->add_option("--first-code", created->firstCode, "Code of the first card, 1 to 8 digits")->required();
  batch->add_option("--count", created->count, "How many cards")->required();
  batch->add_option("--group", created->group, "Name or number of their access group")->required();
  batch->add_flag("--codes-as-names", created->codesAsNames, "Their names are their codes");
  batch->footer(
      "Example:\n  voxa card batch --first-number 100 --first-code 52000 --count 50 --group Visitors");
  batch->callback([&session, created] { createBatch(session, *created); });

  auto* deleting = group.add_subcommand("delete", "Erase a card on every controller and delete it");
  auto deleted = std::make_shared<std::string>();
  deleting->add_option("CARD", *deleted, "Number or name of the card")->required();
  deleting->footer("Its name and code stay in use.\nExample:\n  voxa card delete \"Ann Lee\"");
  deleting->callback([&session, deleted] { deleteCard(session, *deleted); });

  auto* invalidate = group.add_subcommand(
      "invalidate", "Erase a card number on controllers; its card stays, marked to be sent again");
  auto number = std::make_shared<std::string>();
  auto choice = std::make_shared<ComponentChoice>();
  invalidate->add_option("NUMBER", *number, "The card number")->required();
  addComponentOptions(*invalidate, *choice);
  invalidate->footer("Example:\n  voxa card invalidate 12 --station Annex");
  invalidate->callback([&session, number, choice] { invalidateCard(session, *number, *choice); });
}

}  // namespace voxa::cli
