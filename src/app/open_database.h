#pragma once

#include <memory>
#include <string>

#include "platform/database/database.h"

namespace voxa {

/// The database of that file, when it is open in this engine; else nullptr. A program that opens it works
/// with this one, so that its changes and the library's do not wait for each other's locks.
[[nodiscard]] std::shared_ptr<Database> findOpenDatabase(const DatabaseEngine& engine,
                                                         const std::string& path);

/// Opens a database file that a program names, whatever it holds, as DatabaseEngine::open does. Nothing
/// brings the file forward. A ledger is opened for reading only, else 3027. forReading: changes raise 3027.
[[nodiscard]] std::shared_ptr<Database> openDatabase(DatabaseEngine& engine, const std::string& path,
                                                     bool forReading);
/// Creates one without tables. A name without an ending gets ".mdb".
[[nodiscard]] std::shared_ptr<Database> createDatabase(DatabaseEngine& engine, const std::string& path);

/// Whether a file is a ledger, which nothing but the sends themselves may write. By what it holds: a link or
/// a copy has another name.
[[nodiscard]] bool isLedger(const Database& database);

}  // namespace voxa
