#include "work/card_batch.h"

#include <set>

#include "access/cardholder.h"
#include "platform/database/database.h"
#include "work/card_values.h"
#include "work/held_codes.h"
#include "work/installation.h"
#include "work/line_test.h"
#include "work/words.h"

namespace voxa {

CardBatch::CardBatch(Installation& installation, const CardBatchTexts& texts)
    : first(cardNumber(texts.firstNumber)),
      count(numberWithin("the number of cards", texts.count, 1, 9999)),
      firstCode(texts.firstCode) {
  (void)cardNumber(std::to_string(first + count - 1));
  (void)cardCode(firstCode);
  group = GroupNames(installation).id(texts.group);
}

namespace {

void requireHeldByNoOther(Installation& installation, const CardBatch& batch) {
  if (!isNumber(batch.firstCode)) return;  // which is refused when the codes are counted up
  const auto rows = installation.database().openRecordset("select CardNum, CardCode from Cardholders");
  std::set<std::string> taken;
  for (; !rows->eof(); rows->moveNext()) {
    if (!rows->get("CardNum").isNull()) taken.insert("number " + rows->get("CardNum").toText());
    if (!rows->get("CardCode").isNull()) taken.insert(heldForm(rows->get("CardCode").toText()));
  }
  std::vector<CardIdentity> cards;
  for (std::int32_t i = 0; i < batch.count; ++i) {
    const CardIdentity card{batch.first + i, std::to_string(std::stoll(batch.firstCode) + i), true};
    // What a row has is refused with that row.
    if (taken.contains("number " + std::to_string(card.number)) || taken.contains(heldForm(card.code)))
      return;
    cards.push_back(card);
  }
  const HeldCodes held(installation, cards);
  for (const CardIdentity& card : cards) held.requireFree(card);
}

}  // namespace

CreatedBatch createCards(Installation& installation, const CardBatch& batch, bool codesAsNames) {
  requireHeldByNoOther(installation, batch);
  const auto silent = silentControllers(installation, {});
  CreatedCards cards = installation.Cardholders().createCards(batch.first, batch.firstCode, batch.count,
                                                              batch.group, codesAsNames);
  CreatedBatch created{cards.status == 0, std::move(cards.notices), {}};
  if (!created.created || cards.everywhere) return created;
  created.silent = namesOf(silent);
  return created;
}

}  // namespace voxa
