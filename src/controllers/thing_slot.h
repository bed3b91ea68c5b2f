#pragma once

#include <cstdint>

#include "controllers/sent_line.h"

namespace voxa {

// The things of a controller in one row of numbers, so that the ledger finds each by one: cards at their
// number, up to 9999, then a hundred numbers for each of the other kinds.

inline constexpr std::int32_t slotsOfController = 16'384;
inline constexpr std::int32_t firstSlotBehindCards = 10'000;

/// Behind the last slot of the kind that starts with the first one.
struct SlotRange {
  std::int32_t first;
  std::int32_t end;
};

[[nodiscard]] constexpr SlotRange slotsOf(ThingKind kind) {
  constexpr std::int32_t ofKind = 100;
  if (kind == ThingKind::card) return {0, firstSlotBehindCards};
  const std::int32_t first = firstSlotBehindCards + (static_cast<std::int32_t>(kind) - 1) * ofKind;
  return {first, first + ofKind};
}

/// number: as SentLine has it, within the kind's range.
[[nodiscard]] constexpr std::int32_t slotOf(ThingKind kind, std::int32_t number) {
  return slotsOf(kind).first + number;
}

}  // namespace voxa
