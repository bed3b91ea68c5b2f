#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "access/card_doors.h"

namespace voxa {

class Installation;

/// A controller that an access group reaches, and the lift outputs its cards may use there.
struct ReachedController {
  GrantedController controller;
  std::set<std::int16_t> lifts;
};
/// By station and address.
[[nodiscard]] std::vector<ReachedController> reachOf(Installation& installation, std::int16_t group);

/// What of `reach` is not in `other`: controllers, and those with lift outputs more than there. Of the reach
/// that cards had, to the one they will have: who has to erase them first. The other way round: who may know
/// nothing of them yet.
[[nodiscard]] std::vector<GrantedController> without(const std::vector<ReachedController>& reach,
                                                     const std::vector<ReachedController>& other);

/// The numbers of a group's cards: `live` ones, and deleted ones that a controller has yet to erase.
struct CardsOfGroup {
  std::vector<std::int32_t> live, deleted;
};
[[nodiscard]] CardsOfGroup cardsOf(Installation& installation, std::int16_t group);

/// Marks a group that has cards, and these as a whole, after a change of its doors.
void markGroup(Installation& installation, std::int16_t group);

}  // namespace voxa
