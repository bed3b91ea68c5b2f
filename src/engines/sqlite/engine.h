#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/database/database.h"

namespace voxa {

class Clock;

struct SqliteOptions {
  int busyTimeoutMs = 5000;  ///< how long a call waits for another user's lock before it raises 3260
  bool readOnly = false;     ///< every file is opened only for reading
  /// Columns that no statement may use (dialect::Schema::isSecret). table: "" for the tables of all names.
  /// Names are compared without regard to case.
  struct Secret {
    std::string table;
    std::string field;
  };
  std::vector<Secret> secrets{};
  /// What makes a change whole when it is broken off. behind: a copy of the old pages, in a file that exists
  /// meanwhile alone; a commit waits for the disk four times. ahead: the new pages, in a file that stays
  /// beside the database while it is open; a commit waits once. Such a file cannot be on a network share.
  /// kept: what the file has had. A file that is opened only for reading always keeps it.
  enum class Journal { behind, ahead, kept };
  Journal journal = Journal::behind;
};

/// Makes the embedded engine, in which each database is one SQLite file with the name that it was given.
/// `clock` answers Now() and must outlive the engine. A database closes itself when nobody holds it any more.
/// Those still open when the engine goes are useless from then on (3420).
[[nodiscard]] std::unique_ptr<DatabaseEngine> makeSqliteEngine(const Clock& clock,
                                                               const SqliteOptions& options = {});

/// How many statements a database of this engine has prepared since it was opened. A text that differs from
/// an earlier one only in its literals must not raise the number.
[[nodiscard]] std::size_t preparedStatements(const Database& database);

}  // namespace voxa
