#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "work/card_values.h"

namespace voxa {

class Installation;

// A card at the desk, in one step: its row changes, and then the controllers are told of it at once. Each by
// itself, so that one which does not answer keeps no other from it; it stays in the plan and is named.

/// What became of a card.
struct ToldCard {
  std::int32_t number = 0;
  std::string name;
  /// Controllers that were not told, each with the reason: "Local Controller 1  -  Front: does not answer".
  /// What they miss is in the plan.
  std::vector<std::string> left = {};
  std::string notTold = {};  ///< why no controller could be told; "" when they could
};

/// How controllers are told.
struct Telling {
  bool dial = false;  ///< stations with a telephone number are called
};

/// A card that was lost: it is not valid from now on, and every controller that may hold it erases it. Its
/// row stays. A controller that could not be told opens to the card until it is: the next download shuts it
/// there.
ToldCard blockCard(Installation& installation, const std::string& card, const Telling& how);
/// The card is valid again, and the controllers of its group get all of it.
ToldCard unblockCard(Installation& installation, const std::string& card, const Telling& how);

/// Another card for the same person: the old one is blocked, then the row gets the new code, is valid, and is
/// sent. texts: the code, and what else changes. `left` names the controllers at which the old card is still
/// there. With another number a Refusal when there are any: who gets the old number next would be taken for
/// this person there. The card is blocked then.
ToldCard replaceCard(Installation& installation, const std::string& card, const CardTexts& texts,
                     const Telling& how);

}  // namespace voxa
