#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

#include "controllers/card_state.h"
#include "controllers/controller_list.h"
#include "controllers/ledger_file.h"

namespace voxa {

/// What a controller is known to hold.
struct Holdings {
  std::map<std::int32_t, CardState> cards;                        ///< by number
  std::map<std::pair<ThingKind, std::int32_t>, Possible> things;  ///< all others
  std::vector<std::string> notUnderstood;                         ///< lines, the oldest first
};
[[nodiscard]] Holdings readHoldings(const LedgerFile& file, const LedgerController& controller);

/// Lines that were sent to a controller, in their order.
struct SentLines {
  std::vector<std::string_view> lines;
  bool certain = false;  ///< acknowledged
};
/// Takes what was sent to a controller into the ledger. Within a transaction of the ledger.
void takeLines(const LedgerFile& file, const LedgerController& controller, const std::vector<SentLines>& sent,
               DateTime now);

}  // namespace voxa
