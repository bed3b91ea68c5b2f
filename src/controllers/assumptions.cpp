#include "controllers/assumptions.h"

#include "access/access_context.h"
#include "controllers/card_state.h"
#include "controllers/controller_list.h"
#include "controllers/holdings.h"
#include "controllers/image.h"
#include "controllers/ledger_file.h"
#include "controllers/thing_slot.h"

namespace voxa {

namespace {

// What is marked was not sent to all, and what it replaces is not known.
Possible assumption(const std::string& value, bool marked) {
  return marked ? Possible::unknown() : Possible::assumed(value);
}

/// What a controller may hold of a card; granted: null where its group is granted nothing. A card that cannot
/// be right may be there in any form, one whose move to another group is marked wherever the group before it
/// was, and of several with one number nobody knows which.
CardState stateOf(const ImageCard& card, const ImageRights* granted) {
  CardState state;
  const bool faulty = granted != nullptr && (!card.fault.empty() || !granted->fault.empty());
  if (faulty || card.marks[accessGroupPart] || card.several) {
    state.mayBeAnything();
    return state;
  }
  if (granted == nullptr) return state;
  const CardImage image = card.wanted ? Image::on(card, *granted) : CardImage();
  for (std::size_t i = 0; i < cardFieldCount; ++i) {
    const auto field = static_cast<CardField>(i);
    state.part(field) = assumption(ledgerValue(field, image.value(field)), card.marks[partOf(field)]);
  }
  if (!card.wanted) return state;
  for (const std::int16_t output : granted->lifts) state.setLift(output, assumption("1", card.marks.any()));
  return state;
}

void assume(const LedgerFile& file, AccessContext& context) {
  ControllerList controllers(file.database(), context);
  const Image image(context);
  const auto insert = [&](const ControllerPlace& place, std::int32_t slot, const std::string& state) {
    file.insertThing().execute({controllers.at(place).id * slotsOfController + slot, state});
  };
  for (const auto& [place, type] : controllers.installed()) {
    if (!isOfController(place.address)) continue;
    for (const ThingImage& thing : image.things(type).things) {
      insert(place, slotOf(thing.line.kind, thing.line.number),
             assumption(thing.line.value, thing.marked).text());
    }
    for (const LeftOut& row : image.things(type).leftOut) {
      const SlotRange slots = slotsOf(row.kind);
      if (row.number >= 0 && row.number < slots.end - slots.first)
        insert(place, slotOf(row.kind, row.number), Possible::unknown().text());
    }
    for (const ImageCard& card : image.cards()) {
      const ImageRights* granted = image.granted(place, card.group);
      const CardState state = stateOf(card, granted);
      if (granted != nullptr || state != CardState())
        insert(place, slotOf(ThingKind::card, card.number), state.text());
    }
  }
}

}  // namespace

void assumeNothing(const LedgerFile& file, AccessContext& context) {
  ControllerList controllers(file.database(), context);
  controllers.requireInstallation();
  if (!context.DB()) {
    throw Error(err::dbInvalidObject,
                "The ledger of what the controllers hold was damaged: a new one begins when the main "
                "database is open");
  }
  for (const auto& [place, type] : controllers.installed()) {
    if (isOfController(place.address)) noteAnything(file, controllers.at(place));
  }
}

void assumeRows(const LedgerFile& file, AccessContext& context) {
  if (!context.DB()) return;
  try {
    assume(file, context);
  } catch (const Error& error) {
    // What is no main database of ours says nothing of controllers.
    if (error.number() != err::dbUnknownTable && error.number() != err::dbTooFewParameters) throw;
  }
}

}  // namespace voxa
