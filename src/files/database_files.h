#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace voxa {

class Database;
class FileContext;

/// What a person is asked before a database file is replaced, saved or restored. A file operation that fails
/// is raised.

/// Asks whether to save the file before something replaces it. Yes moves it to a name that the person picks.
/// No deletes it; with `overwriteAllowed` the person is asked once more, and a second No counts as Yes. The
/// file is closed first. mnemonic: of the question. Returns true when the person cancelled, or when there is
/// no such file.
[[nodiscard]] bool saveBeforeReplace(FileContext& context, const std::string& name, const char* mnemonic,
                                     bool overwriteAllowed);

/// Closes the file and copies it to a name that the person picks. 0 when done, -1 when cancelled or refused.
[[nodiscard]] std::int16_t saveDatabaseAs(FileContext& context, const std::string& name);

/// Asks whether to save the file first, closes it, and copies the backup that the person picks over it. 0
/// when done, -1 when cancelled or refused. mnemonic: of the question. requireFit: gets the open backup
/// before anything is copied, and raises an Error when it cannot take the file's place.
[[nodiscard]] std::int16_t restoreDatabase(FileContext& context, const std::string& name,
                                           const char* mnemonic, std::function<void(Database&)> requireFit);

/// Closes every open database of that file name. A bare name means a file of the current folder.
void closeDatabaseFile(FileContext& context, const std::string& name);

}  // namespace voxa
