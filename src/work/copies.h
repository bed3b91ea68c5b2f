#pragma once

#include <string>

namespace voxa {

class Installation;

// Copies of the main database, in files that a person names by their full path.

/// A Refusal for a path that is a file of the installation, or the place of one.
void requireForeignFile(Installation& installation, const std::string& path);

/// The file to put in place of the main database: links in its path are followed, since only files themselves
/// are opened as databases. A Refusal for a file of the installation; and, unless `modemsSeen` says that a
/// person has agreed to them, for a database whose stations have modem files outside of the installation,
/// since the driver opens them. Whether the file is a database at all is left to the restore.
[[nodiscard]] std::string copyToRestore(Installation& installation, const std::string& path, bool modemsSeen);

}  // namespace voxa
