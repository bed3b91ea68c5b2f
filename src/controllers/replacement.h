#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "comm/com_types.h"

namespace voxa {

class ControllerList;
class LedgerFile;

// What somebody says of controllers to the ledger. Within a transaction of the ledger.

/// Another controller is at the place, as Ledger::replace has it.
void replaceController(const LedgerFile& file, ControllerList& controllers, const ControllerPlace& place,
                       bool usedElsewhere);

/// Ledger::beginCredits.
void beginCredits(const LedgerFile& file, ControllerList& controllers,
                  const std::map<std::int32_t, std::vector<ControllerPlace>>& cards);

}  // namespace voxa
