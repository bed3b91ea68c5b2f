#pragma once

#include <memory>

#include "platform/database/database.h"
#include "work/refused_rows.h"
#include "work/transfer.h"

namespace voxa {

class Clock;

/// What may be done with a file that a person names.
struct FileRights {
  bool write = false;  ///< rows and tables may be changed; otherwise the file is opened so that it cannot be
  /// Statements may use the columns that hold personal codes: PINCode of any table, and those of a ledger
  /// that tell what a controller was sent. Otherwise a star shows them masked.
  bool codes = false;
};

/// The engine for database files that a person names, of whatever kind: files of this system, and files of
/// the Jet database engine, for reading where the library of that engine is not installed. It leaves them as
/// they are: nothing brings them forward, and they keep their way of making changes whole.
[[nodiscard]] std::unique_ptr<DatabaseEngine> makeFileEngine(const Clock& clock, FileRights rights);

/// Adds what the reader of a file could not take over from it. To be called when its rows have been read.
/// refused: gets what a damaged file has lost; nullptr when nobody decides about that.
void addReaderNotes(const Database& source, Transferred& done, RefusedRows* refused);

}  // namespace voxa
