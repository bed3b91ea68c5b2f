#pragma once

#include <optional>

namespace voxa {

class Database;

// What the ledger knows of the whole installation. Within a transaction of the ledger.

/// Whether the controllers were told daily programs of four intervals; none when of nothing yet.
[[nodiscard]] std::optional<bool> fourIntervalsOf(Database& ledger);
void storeFourIntervals(Database& ledger, bool four);

}  // namespace voxa
