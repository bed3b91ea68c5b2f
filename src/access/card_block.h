#pragma once

#include <cstdint>
#include <vector>

#include "comm/com_types.h"
#include "platform/context.h"

namespace voxa {

class AccessContext;

/// The card numbers from the first to the last.
[[nodiscard]] std::vector<std::int32_t> numbersOf(std::int32_t first, std::int32_t last);

/// Erases cards on a controller; whether it confirmed. Otherwise a line in `Com.errorList` tells what is
/// still on it.
[[nodiscard]] bool eraseCards(AccessContext& context, const ControllerPlace& place,
                              const std::vector<std::int32_t>& numbers);

/// Erases what batches of cards that did not come to their end have left: cards of their numbers, as the
/// ledger has noted them, on controllers where the table has no such card. A controller that is not in use or
/// does not answer stays noted for the next call; so does one that fails to erase them, which is shown.
/// Batches that are still under way are passed over, and all of them while communications are inhibited.
/// Whether no controller failed.
bool eraseUnfinishedBlocks(AccessContext& context);
/// The same without a box: what failed.
[[nodiscard]] std::vector<Notice> finishUnfinishedBlocks(AccessContext& context);

}  // namespace voxa
