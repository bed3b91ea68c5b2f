#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "comm/row_download.h"
#include "platform/context.h"

namespace voxa {

class Installation;

// Cards that controllers erase at once. Both mark the card as a whole first, on the disk: whatever happens on
// the way, the controllers that have erased a card which the table keeps get all of it back. To be called
// behind a test of the controllers: one that did not answer is passed over and named.

/// What became of a card.
struct ErasedCard {
  bool erased = false;               ///< by the controllers that could be asked
  std::string name;                  ///< of its holder, when it is a card of the table
  std::vector<std::string> holders;  ///< controllers that may still hold it
  std::vector<Notice> notices;       ///< why it was not erased
};

/// The number of a card by its number or name; a Refusal when there is none. Deleted cards are passed over.
[[nodiscard]] std::int16_t numberOfCard(Installation& installation, const std::string& numberOrName);

/// Erases a card on every controller and deletes its row; its name and code stay in use. While `holders`
/// remain its number does too, and every later download has them erase it. When a controller fails to erase
/// it the card stays as it was.
ErasedCard deleteCard(Installation& installation, std::int16_t number);

/// Erases a card number on the controllers of a component; a card of the table stays, for the next download
/// to give it back. A Refusal when a controller does not take it.
ErasedCard invalidateCard(Installation& installation, std::int16_t number, const Component& component);

}  // namespace voxa
