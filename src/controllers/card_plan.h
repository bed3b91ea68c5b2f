#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "controllers/card_state.h"
#include "controllers/image.h"
#include "controllers/plan.h"

namespace voxa {

class TimesPlan;

/// The controller at which cards are compared.
struct CardsAt {
  std::string controllerType;
  const TimesPlan& times;
  bool isNew = false;  ///< nothing was ever sent to it
  bool full = false;   ///< everything is sent again
};

/// What a controller misses of a card that it should have; none when it has it. creditSent: the marked
/// credit is on its way.
[[nodiscard]] std::optional<PlanItem> wantedCard(const CardsAt& at, const ImageCard& card,
                                                 const ImageRights& granted, const CardState& held,
                                                 bool creditSent);
/// What is to be done about a number that a controller should not have; none when it does not. reason: why
/// it should not.
[[nodiscard]] std::optional<PlanItem> unwantedCard(std::int32_t number, PlanReason reason,
                                                   const CardState& held);

}  // namespace voxa
