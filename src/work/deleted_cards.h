#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace voxa {

class Installation;

// Cards that were deleted: their rows stay, with name and code.

/// A deleted card as it is given back.
struct Restoring {
  std::optional<std::string> number = {};  ///< another one than it had
  std::optional<std::string> group = {};   ///< another one than it is in
};
/// Gives a deleted card back, marked to be sent as a whole; its number. card: number or name. A Refusal when
/// another card has its number meanwhile, when several deleted cards had that number, and without a group for
/// a card of the default one: cards of groups that were deleted are in it, too, and it may open more doors.
std::int16_t restoreCard(Installation& installation, const std::string& card, const Restoring& how);

/// A deleted card that may be removed for good.
struct Purge {
  std::int32_t id = 0;
  std::string card;  ///< "card 12 (Ann Lee)"
};
/// A Refusal for a card that is not deleted, and while a controller may still hold it, which is named.
[[nodiscard]] Purge requirePurgeable(Installation& installation, const std::string& card);
/// Removes its row, so that name, number and code are free again. What it was called and when it had its
/// number stays known to the journal. It cannot be taken back.
void purgeCard(Installation& installation, const Purge& purge);

}  // namespace voxa
