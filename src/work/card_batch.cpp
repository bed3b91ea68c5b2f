#include "work/card_batch.h"

#include "access/cardholder.h"
#include "work/card_values.h"
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

CreatedBatch createCards(Installation& installation, const CardBatch& batch, bool codesAsNames) {
  const auto silent = silentControllers(installation, {});
  CreatedCards cards = installation.Cardholders().createCards(batch.first, batch.firstCode, batch.count,
                                                              batch.group, codesAsNames);
  CreatedBatch created{cards.status == 0, std::move(cards.notices), {}};
  if (!created.created || cards.everywhere) return created;
  created.silent = namesOf(silent);
  return created;
}

}  // namespace voxa
