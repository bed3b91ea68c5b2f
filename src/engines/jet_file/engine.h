#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engines/sqlite/engine.h"

namespace voxa {

class Clock;

struct JetFileOptions {
  /// The reader program, voxa-jet-reader. "": looked for beside the running program, then where it was
  /// installed.
  std::string reader{};
  /// What one run of it may take: bytes of memory, seconds of processor time.
  std::uint64_t memoryBytes = std::uint64_t{512} * 1024 * 1024;
  std::uint64_t processorSeconds = 300;
  /// How long it may send nothing while it is waited for.
  int silenceMs = 60'000;
  std::vector<SqliteOptions::Secret> secrets{};  ///< columns that no statement may use; a star masks them
};

/// Makes the engine that reads existing files of the Jet database engine (*.mdb, Jet 3 and 4). A file is
/// never changed: create and all changes raise 3027. `clock` answers Now() and must outlive the engine.
///
/// open raises 3024 missing, 3343 no such file or damaged, 3031 protected with a password or encrypted, 3051
/// when it, or the reader program, cannot be opened. A reading of a file that another program has changed
/// since it was opened raises 3260.
///
/// Definitions are those of the file, as far as they can be told here; jetFileNotes tells the rest. visitRows
/// of a table's name reads straight from the file. Any other use of rows copies the whole file at its first
/// need into a temporary database, which is gone when the database is closed.
[[nodiscard]] std::unique_ptr<DatabaseEngine> makeJetFileEngine(const Clock& clock,
                                                                const JetFileOptions& options = {});

/// What could not be taken over from a file, in sentences: linked tables, queries in words that this system
/// does not have, values that could not be read. Reading rows can add some. Empty for a database of another
/// engine.
[[nodiscard]] const std::vector<std::string>& jetFileNotes(const Database& database);

/// Whether some of these notes tell of what the file once held: tables, rows or values that cannot be read.
[[nodiscard]] bool isDamagedJetFile(const Database& database);

}  // namespace voxa
