#pragma once

#include <cstdint>

#include "controllers/sent_line.h"

namespace voxa {

// The things of a controller in one row of numbers, so that the ledger finds each by one: cards at their
// number, up to 9999, then a hundred numbers for each of the other kinds, then one for each kind.

inline constexpr std::int32_t slotsOfController = 16'384;
inline constexpr std::int32_t firstSlotBehindCards = 10'000;
inline constexpr std::int32_t slotsOfKind = 100;

/// Behind the last slot of the kind that starts with the first one.
struct SlotRange {
  std::int32_t first;
  std::int32_t end;
};

[[nodiscard]] constexpr SlotRange slotsOf(ThingKind kind) {
  if (kind == ThingKind::card) return {0, firstSlotBehindCards};
  const std::int32_t first = firstSlotBehindCards + (static_cast<std::int32_t>(kind) - 1) * slotsOfKind;
  return {first, first + slotsOfKind};
}

/// Where it stands what is known of the things of a kind that have no row: nothing, or nothing is there.
[[nodiscard]] constexpr std::int32_t slotOfOthers(ThingKind kind) {
  constexpr std::int32_t first = firstSlotBehindCards + 1000;
  return first + static_cast<std::int32_t>(kind);
}

/// Those of every kind.
inline constexpr SlotRange slotsOfOthers = {slotOfOthers(ThingKind::card),
                                            slotOfOthers(ThingKind::badgeFormat) + 1};
/// All that are no cards, those of others among them.
inline constexpr SlotRange slotsBehindCards = {firstSlotBehindCards, slotsOfController};
inline constexpr SlotRange allSlots = {0, slotsOfController};

/// number: as SentLine has it, within the kind's range.
[[nodiscard]] constexpr std::int32_t slotOf(ThingKind kind, std::int32_t number) {
  return slotsOf(kind).first + number;
}

/// Of a slot, also that of others.
[[nodiscard]] constexpr ThingKind kindOf(std::int32_t slot) {
  if (slot < firstSlotBehindCards) return ThingKind::card;
  if (slot >= slotOfOthers(ThingKind::card))
    return static_cast<ThingKind>(slot - slotOfOthers(ThingKind::card));
  return static_cast<ThingKind>((slot - firstSlotBehindCards) / slotsOfKind + 1);
}

}  // namespace voxa
