#pragma once

#include <sqlite3.h>

#include <optional>

#include "platform/error.h"

namespace voxa {

class Clock;

/// The failure of one of our functions, which SQLite's own result can carry only as a text. A call of SQLite
/// that fails while `error` is set failed for that reason; who takes it resets it.
struct PendingError {
  std::optional<Error> error;
};

/// Registers the collation and the functions that translated statements rely on (list: dialect.h).
/// `pending` and `clock` outlive the connection. All count as deterministic: Now() has one value for the
/// whole of a statement.
void registerFunctions(sqlite3* db, PendingError& pending, const Clock& clock);

}  // namespace voxa
