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

/// The last transaction of a card: the newest by date, and of one minute one that was read last.
struct LastUse {
  DateTime date;
  std::string reader;  ///< "" when it was not known
  TransactionMeaning meaning = TransactionMeaning::other;
};
/// None for a card of which the journal has none. All of the journal is read once; with an index
/// of dates no more than back to the row that was read last.
[[nodiscard]] std::optional<LastUse> lastUse(Installation& installation, std::int32_t id);

/// Leaves the cards out that the journal knows. It is read once, up to the row behind which none of the cards
/// is left; of its rows none is kept.
void leaveOutUsed(Installation& installation, std::vector<CardRow>& cards);

}  // namespace voxa
