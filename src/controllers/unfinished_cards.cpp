#include "controllers/unfinished_cards.h"

#include <map>

#include "controllers/controller_list.h"
#include "controllers/pending_sends.h"
#include "controllers/thing_slot.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

std::int32_t idOf(const LedgerController& controller, std::int32_t card) {
  return controller.id * slotsOfController + slotOf(ThingKind::card, card);
}

}  // namespace

void noteUnfinished(Database& ledger, ControllerList& controllers, const std::vector<UnfinishedCards>& cards,
                    std::int16_t owner) {
  const auto insert = ledger.prepare(
      "parameters pId long, pOwner short; insert into Unfinished (Id, Owner) values (pId, pOwner)");
  forgetUnfinished(ledger, controllers, cards);
  for (const UnfinishedCards& each : cards) {
    for (const std::int32_t number : each.numbers)
      insert->execute({idOf(controllers.at(each.place), number), owner});
  }
}

std::vector<UnfinishedCards> unfinishedCards(Database& ledger, const ControllerList& controllers,
                                             const PendingSends& processes) {
  std::map<std::int32_t, ControllerPlace> places;
  for (const auto& [place, controller] : controllers.all()) places[controller.id] = place;
  std::map<ControllerPlace, UnfinishedCards> all;
  const auto rows = ledger.openRecordset("select * from Unfinished order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    if (processes.isAtWork(rows->get("Owner").toInt16())) continue;
    const std::int32_t id = rows->get("Id").toInt32();
    const auto place = places.find(id / slotsOfController);
    if (place == places.end()) {
      rows->remove();  // its controller is gone
      continue;
    }
    UnfinishedCards& cards = all[place->second];
    cards.place = place->second;
    cards.numbers.push_back(id % slotsOfController);
  }
  std::vector<UnfinishedCards> list;
  list.reserve(all.size());
  for (auto& [place, cards] : all) list.push_back(std::move(cards));
  return list;
}

void forgetUnfinished(Database& ledger, ControllerList& controllers,
                      const std::vector<UnfinishedCards>& cards) {
  const auto remove = ledger.prepare("parameters pId long; delete from Unfinished where Id = pId");
  for (const UnfinishedCards& each : cards) {
    for (const std::int32_t number : each.numbers)
      remove->execute({idOf(controllers.at(each.place), number)});
  }
}

}  // namespace voxa
