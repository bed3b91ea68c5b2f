#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "site/contents.h"

namespace site {

class Storage;

enum class Outcome : std::uint8_t { granted, refusedByTime, refusedForRights, unknownCard };

struct Decision {
  Outcome outcome = Outcome::unknownCard;
  std::string reason;        ///< for a person
  std::optional<Card> card;  ///< none for an unknown one
};

/// Decides whether the card of that code (as Card::code) opens the door of a reader position (1 to 4) at that
/// moment. Only what the controller holds counts. A grant uses up one credit of a card that has credits. pin:
/// the personal code keyed in; none when the reader does not ask for one.
Decision decide(Storage& storage, std::int64_t controller, const std::string& code, int position,
                const std::optional<std::string>& pin, const Moment& moment);

}  // namespace site
