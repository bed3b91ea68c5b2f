#pragma once

#include <string>
#include <string_view>

namespace voxa {

class Connection;
struct Session;

/// Full native path of a database file.
[[nodiscard]] std::string databasePath(std::string_view path);

/// Makes a database without tables. There is the whole file or none, whatever interrupts this. 3204 when a
/// file of that name exists, 3051 when the place does not allow it, 3026 when the disk is full.
/// given: the path as the caller gave it.
void createDatabaseFile(std::string_view given, const Session& session);

/// Makes a database file with what is committed in another one, on the same terms; it is on the disk when
/// this returns. path: of the other one, as databasePath gives it.
void copyDatabaseFile(const std::string& path, std::string_view given, const Session& session);

/// Raises 3024 when the file is missing, 3051 when it cannot be read, 3343 when its first bytes are not those
/// of a database of this engine. It only reads, so a file of another kind stays as it is. Returns whether its
/// texts are in today's order (compareNoCase); otherwise they are in that of compareAsBefore.
[[nodiscard]] bool checkDatabaseFile(const std::string& path, std::string_view given);

/// Opens a file that was checked. One that is not sorted is brought in today's order first; programs that do
/// not know this order refuse it from then on. Where it cannot be written, it is read in its own.
[[nodiscard]] Connection openDatabaseFile(const std::string& path, const Session& session, bool sorted);

/// Opens a file that was checked, for reading only.
[[nodiscard]] Connection readDatabaseFile(const std::string& path, const Session& session, bool sorted);

}  // namespace voxa
