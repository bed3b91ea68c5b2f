#pragma once

#include <sqlite3.h>

#include <optional>
#include <string_view>

#include "platform/error.h"
#include "platform/text.h"

namespace voxa {

class Clock;

/// The failure of a vx_ function. SQLite's own result can carry it only as text, so it is kept here. When a
/// call of SQLite fails while `error` is set, this is the reason; whoever takes the error resets it.
struct PendingError {
  std::optional<Error> error;
};

/// Registers the collation and the functions that translated statements rely on (the list is in dialect.h).
/// `pending` and `clock` must outlive the connection. compare: the order of texts. All functions count as
/// deterministic, since Now() has one value for the whole of a statement.
using TextOrder = int (*)(std::string_view a, std::string_view b);
void registerFunctions(sqlite3* db, PendingError& pending, const Clock& clock,
                       TextOrder compare = compareNoCase);

}  // namespace voxa
