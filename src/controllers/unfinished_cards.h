#pragma once

#include <cstdint>
#include <vector>

#include "comm/send_ledger.h"

namespace voxa {

class ControllerList;
class Database;
class PendingSends;

// Cards that a batch which did not come to its end may have left on controllers, as the ledger keeps them:
// each with the process that is at work on it. Within a transaction of the ledger.

/// owner: number of the process (PendingSends::owner), or PendingSends::nobody.
void noteUnfinished(Database& ledger, ControllerList& controllers, const std::vector<UnfinishedCards>& cards,
                    std::int16_t owner);
/// Those that nobody is at work on, by place.
[[nodiscard]] std::vector<UnfinishedCards> unfinishedCards(Database& ledger,
                                                           const ControllerList& controllers,
                                                           const PendingSends& processes);
void forgetUnfinished(Database& ledger, ControllerList& controllers,
                      const std::vector<UnfinishedCards>& cards);

}  // namespace voxa
