#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace voxa {

class Database;
class FileContext;

/// The confirmation flow around replacing, saving and restoring a database file. Failing file operations are
/// raised.

/// Asks whether to save the file before something replaces it: Yes moves it to a name the person picks, No
/// deletes it (asking once more when `overwriteAllowed`, a second No counting as Yes). The file is closed
/// first. mnemonic: of the question. Returns true when the person cancelled, or when there is no such file.
[[nodiscard]] bool saveBeforeReplace(FileContext& context, const std::string& name, const char* mnemonic,
                                     bool overwriteAllowed);

/// Closes the file and copies it to a name the person picks; 0 done, -1 cancelled or refused.
[[nodiscard]] std::int16_t saveDatabaseAs(FileContext& context, const std::string& name);

/// Asks whether to save the file first, closes it, and copies the backup the person picks over it; 0 done, -1
/// cancelled or refused. mnemonic: of the question. requireFit: raises what makes the backup, open, unfit to
/// take the file's place; before anything is copied.
[[nodiscard]] std::int16_t restoreDatabase(FileContext& context, const std::string& name,
                                           const char* mnemonic, std::function<void(Database&)> requireFit);

/// Closes every open database of that file name; a bare name is one of the current folder.
void closeDatabaseFile(FileContext& context, const std::string& name);

}  // namespace voxa
