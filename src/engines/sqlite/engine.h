#pragma once

#include <cstddef>
#include <memory>

#include "platform/database/database.h"

namespace voxa {

class Clock;

struct SqliteOptions {
  int busyTimeoutMs = 5000;  ///< how long a call waits for another user's lock before it raises 3260
  bool readOnly = false;     ///< opens every file for reading only
};

/// The embedded engine: each database is one SQLite file under the name it was given. `clock` answers Now()
/// and outlives the engine. A database that nobody holds any more closes itself; those still open when the
/// engine goes are useless from then on (3420).
[[nodiscard]] std::unique_ptr<DatabaseEngine> makeSqliteEngine(const Clock& clock,
                                                               const SqliteOptions& options = {});

/// Number of statements that a database of this engine has prepared since it was opened: repeated texts that
/// differ in their literals alone must not raise it.
[[nodiscard]] std::size_t preparedStatements(const Database& database);

}  // namespace voxa
