#include "controllers/replacement.h"

#include "controllers/card_state.h"
#include "controllers/digest.h"
#include "controllers/holdings.h"
#include "controllers/ledger_file.h"
#include "controllers/thing_slot.h"
#include "platform/database/database.h"

namespace voxa {

void replaceController(const LedgerFile& file, ControllerList& controllers, const ControllerPlace& place,
                       bool usedElsewhere) {
  Holdings before;
  if (const LedgerController* known = controllers.find(place); known != nullptr) {
    readThings(file, *known, slotsOf(ThingKind::badgeFormat), before);
  }
  const LedgerController& now = controllers.replace(place);
  const std::int32_t base = now.id * slotsOfController;
  for (const auto& [thing, format] : before.things) {
    // Not acknowledged by this one: it is to be sent again.
    Possible again;
    again.mayBecome(format.since().empty() ? format.last() : format.since().back());
    file.insertThing().execute({base + slotOf(thing.first, thing.second), again.text()});
  }
  if (usedElsewhere) noteAnything(file, now);
}

void beginCredits(const LedgerFile& file, ControllerList& controllers,
                  const std::map<std::int32_t, std::vector<ControllerPlace>>& cards) {
  for (const auto& [number, places] : cards) {
    if (!file.database()
             .openRecordset("select Id from CreditsSent where Id = " + std::to_string(number))
             ->eof())
      continue;
    file.database().execute("insert into CreditsSent (Id) values (" + std::to_string(number) + ")");
    for (const ControllerPlace& place : places) {
      const LedgerController& controller = controllers.at(place);
      Holdings held;
      readThings(file, controller, {number, number + 1}, held);
      const auto card = held.cards.find(number);
      if (card == held.cards.end()) continue;  // it is sent as a whole
      card->second.part(CardField::credit).mayBeAnything();
      file.updateThing().execute({card->second.text(), controller.id * slotsOfController + number});
      const std::int32_t bucket = controller.id * bucketsOfController + bucketOfCard(number);
      file.deleteDigests().execute({bucket, bucket});
    }
  }
}

}  // namespace voxa
