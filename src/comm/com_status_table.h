#pragma once

namespace voxa {

class Database;
struct TableDef;

/// Creates the table of which controllers answered at the last check: `StationID`, `CtrAddr` (1 to 16),
/// `Status` (1 answered, -1 did not), `Date` (the controller's clock, or 1 January 1980). Belongs to every
/// new main database; no indexes, since it holds at most 16 rows a station.
[[nodiscard]] TableDef comStatusDefinition();
void createComStatus(Database& database);

}  // namespace voxa
