#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string_view>
#include <vector>

#include "controllers/card_state.h"
#include "controllers/controller_list.h"
#include "controllers/ledger_file.h"
#include "controllers/thing_slot.h"

namespace voxa {

/// What a controller is known to hold.
struct Holdings {
  std::map<std::int32_t, CardState> cards;                        ///< by number
  std::map<std::pair<ThingKind, std::int32_t>, Possible> things;  ///< all others
  std::set<ThingKind> unknownOthers;                              ///< kinds of which others may be there
  std::vector<std::string> notUnderstood;                         ///< lines, the oldest first

  /// Also of one that is not listed.
  [[nodiscard]] CardState card(std::int32_t number) const;
  [[nodiscard]] Possible thing(ThingKind kind, std::int32_t number) const;
};
[[nodiscard]] Holdings readHoldings(const LedgerFile& file, const LedgerController& controller);
/// Adds what a row of the ledger says of a slot.
void addThing(std::int32_t slot, const std::string& state, Holdings& holdings);
/// Adds what is known of these slots (thing_slot.h), each of which was not added before.
void readThings(const LedgerFile& file, const LedgerController& controller, const SlotRange& slots,
                Holdings& holdings);

/// Notes of a controller of which nothing is noted yet that it may hold anything.
void noteAnything(const LedgerFile& file, const LedgerController& controller);

/// Lines that were sent to a controller, in their order.
struct SentLines {
  std::vector<std::string_view> lines;
  bool certain = false;  ///< acknowledged
};
/// Takes what was sent to a controller into the ledger. Within a transaction of the ledger.
void takeLines(const LedgerFile& file, const LedgerController& controller, const std::vector<SentLines>& sent,
               DateTime now);

}  // namespace voxa
