#include "controllers/assumptions.h"

#include <map>
#include <set>

#include "access/access_context.h"
#include "comm/com.h"
#include "controllers/card_state.h"
#include "controllers/controller_list.h"
#include "controllers/image.h"
#include "controllers/ledger_file.h"
#include "controllers/thing_slot.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

// What is marked was not sent to all, and what it replaces is not known.
Possible assumption(const std::string& value, bool marked) {
  return marked ? Possible::unknown() : Possible::assumed(value);
}

CardState stateOf(const CardImage& image) {
  CardState state;
  for (std::size_t i = 0; i < cardFieldCount; ++i) {
    const auto field = static_cast<CardField>(i);
    state.part(field) = assumption(image.part(field), image.isMarked(field));
  }
  for (const std::int16_t output : image.lifts) state.setLift(output, assumption("1", image.marks.any()));
  return state;
}

void assume(const LedgerFile& file, AccessContext& context, Database& main) {
  ControllerList controllers(file.database(), context);
  const Image image(context, main);
  const auto insert = [&](const ControllerPlace& place, std::int32_t slot, const std::string& state) {
    file.insertThing().execute({controllers.at(place).id * slotsOfController + slot, state});
  };
  std::map<std::string, std::vector<ThingImage>> byType;
  for (const auto& [place, type] : controllers.installed()) {
    if (!isOfController(place.address)) continue;
    const auto [things, added] = byType.try_emplace(type);
    if (added) things->second = image.things(type, context.Com().pDailyPrograms4Zones == 1);
    for (const ThingImage& thing : things->second) {
      insert(place, slotOf(thing.line.kind, thing.line.number),
             assumption(thing.line.value, thing.marked).text());
    }
  }
  std::map<ControllerPlace, std::set<std::int32_t>> known;
  image.cards([&](const ControllerPlace& place, std::int32_t number, const CardImage& card) {
    if (number < firstSlotBehindCards && known[place].insert(number).second) {
      insert(place, slotOf(ThingKind::card, number), stateOf(card).text());
    }
  });
}

}  // namespace

void assumeRows(const LedgerFile& file, AccessContext& context) {
  const std::shared_ptr<Database> main = context.DB();
  if (!main) return;
  try {
    assume(file, context, *main);
  } catch (const Error& error) {
    // What is no main database of ours says nothing of controllers.
    if (error.number() != err::dbUnknownTable && error.number() != err::dbTooFewParameters) throw;
  }
}

}  // namespace voxa
