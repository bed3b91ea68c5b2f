#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/card_filter.h"
#include "work/transaction_type.h"

namespace voxa {

class Installation;

// Where the journal knows a card, by its number at the time (card_history.h).

/// The last transaction of a card.
struct LastUse {
  DateTime date;
  std::string reader;  ///< "" when it was not known
  TransactionMeaning meaning = TransactionMeaning::other;
};
/// None for a card of which the journal has none. The journal is read from its end on: of a card that was
/// never used all of it.
[[nodiscard]] std::optional<LastUse> lastUse(Installation& installation, std::int32_t id);

/// Leaves the cards out that the journal knows. It is read once, up to the row behind which none of the cards
/// is left; of its rows none is kept.
void leaveOutUsed(Installation& installation, std::vector<CardRow>& cards);

}  // namespace voxa
