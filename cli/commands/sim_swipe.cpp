// voxa sim swipe: a card held before a reader.

#include <iostream>

#include "moments.h"
#include "output/command_line.h"
#include "session.h"
#include "sim_commands.h"
#include "site/site.h"
#include "work/card_values.h"
#include "work/readers.h"
#include "work/refusal.h"
#include "work/transaction_type.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct SwipeOptions {
  std::string station, reader, card, code, pin, at;
};

site::Swipe swipeOf(Session& session, const SwipeOptions& options) {
  const ReaderPlace reader = placeOf(session.library(), options.station, options.reader);
  site::Swipe swipe;
  swipe.station = reader.controller.station;
  swipe.address = reader.controller.address;
  swipe.position = reader.position;
  if (!options.card.empty()) swipe.cardNumber = cardNumber(options.card);
  if (!options.code.empty()) swipe.code = cardCode(options.code);
  if (!options.pin.empty()) swipe.pin = options.pin;
  if (!options.at.empty()) swipe.moment = siteMoment(writtenMoment(options.at, session.clock()));
  return swipe;
}

void swipeCard(Session& session, const SwipeOptions& options) {
  if (options.card.empty() && options.code.empty()) throw Refusal("a card is needed: --card or --code");
  session.open();
  const site::Swipe swipe = swipeOf(session, options);
  try {
    const site::SwipeResult result = site::Site().swipe(swipe);
    std::cout << textOf(meaningOf(result.typeCode));
    if (!result.reason.empty()) std::cout << ": " << result.reason;
    if (result.cardNumber) std::cout << " (card " << *result.cardNumber << ')';
    std::cout << "\nRecorded: " << result.record << '\n';
  } catch (const site::Failure& failure) {
    throw Refusal(failure.what());
  }
}

}  // namespace

void addSwipeCommand(Command& group, Session& session) {
  auto* swipe = group.add_subcommand("swipe", "Hold a card before a reader; its controller decides");
  auto options = std::make_shared<SwipeOptions>();
  swipe->add_option("--station", options->station, "Station of the reader")->required();
  swipe->add_option("--reader", options->reader, "The reader")->required();
  swipe->add_option("--card", options->card,
                    "Number of the card, with the code that the controller holds for it");
  swipe->add_option("--code", options->code, "Code of the card, whatever the controller holds");
  swipe->add_option("--pin", options->pin, "Personal code that is keyed in, four digits");
  swipe->add_option("--at", options->at,
                    "When, as \"2026-12-24 18:05\"; by the controller's clock unless given");
  swipe->footer(
      "A swipe is recorded whatever the decision; 'voxa read' brings it into the journal.\n"
      "Examples:\n  voxa sim swipe --station Local --reader \"Main entrance\" --code 00C0FFEE\n"
      "  voxa sim swipe --station Local --reader \"Main entrance\" --card 12 --at \"2026-12-24 "
      "18:05\"");
  swipe->callback([&session, options] { swipeCard(session, *options); });
}

}  // namespace voxa::cli
