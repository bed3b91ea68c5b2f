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
  bool isNew = false;      ///< nothing was ever sent to it
  bool full = false;       ///< everything is sent again
  bool timesSent = false;  ///< programs and holidays are sent, too
};

/// What a controller misses of a card that it should have; none when it has it. creditSent: the marked
/// credit is on its way.
[[nodiscard]] std::optional<PlanItem> wantedCard(const CardsAt& at, const ImageCard& card,
                                                 const ImageRights& granted, const CardState& held,
                                                 bool creditSent);
/// What is to be done about a number that a controller should not have; none when it does not. reason: why
/// it should not.
[[nodiscard]] std::optional<PlanItem> unwantedCard(const CardsAt& at, std::int32_t number, PlanReason reason,
                                                   const CardState& held);
/// What is to be done about a number whose row, or the group's rights, cannot be right there. What the
/// controller has stays, but its doors are shut while times mix, when the row blocks the card, and when the
/// group no longer grants them, or not under that program, and when the row has another code or last day.
/// granted: none when it cannot be told.
[[nodiscard]] std::optional<PlanItem> faultyCard(const CardsAt& at, const ImageCard& card,
                                                 const ImageRights* granted, const CardState& held);

}  // namespace voxa
