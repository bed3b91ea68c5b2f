#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/value.h"

namespace voxa {

class Database;
class Installation;
class Observer;

// The journal as a file: an index for a big one, copies, old rows into a file of their own and back. Whoever
// calls these has the installation for himself (openForSending), so that no reading of controllers adds rows
// meanwhile; what did not come from there is caught all the same. Paths are full ones.

/// What an index takes.
struct JournalIndexing {
  std::size_t rows = 0;
  double seconds = 0;
  std::uint64_t bytesBefore = 0, bytesBehind = 0;  ///< size of the file
};
/// Makes the indexes by which days and persons are found without looking through the whole journal. Each row
/// that is read costs a little more from then on. Those that exist stay.
JournalIndexing indexJournal(Installation& installation);
/// Takes them away; whether there was one. The place in the file is used for new rows.
bool dropJournalIndex(Installation& installation);

/// Saves the journal as a whole. A Refusal for a file of the installation; replace: a file that exists is
/// replaced, when the copy is complete.
void saveJournal(Installation& installation, const std::string& path, bool replace);

/// What came of a restore.
struct JournalRestoring {
  std::size_t rows = 0;   ///< in the file
  std::size_t added = 0;  ///< of them to the journal
};
/// Adds the rows of a saved journal that the journal does not have. Rows are the same when all columns but Id
/// are; one that a file has three times is in the journal three times behind it, or more often if it was. The
/// rows of the journal stay. All or nothing, in little memory. A Refusal for a file that is no journal, and
/// for the journal itself.
JournalRestoring restoreJournal(Installation& installation, const std::string& path, Observer& observer);

/// The rows before a day, and the file in the folder Backup that will hold them: what a person is asked
/// about.
struct JournalDeletion {
  DateTime before;
  std::int32_t lastId = 0;  ///< rows that come later stay
  std::size_t rows = 0;
  std::string file = {};  ///< full path
};
/// before: as writtenSpan reads it. Changes nothing.
[[nodiscard]] JournalDeletion planJournalDeletion(Installation& installation, const std::string& before);
/// Saves those rows in the file, which is a journal, and then deletes them. When it ends in between, by a
/// kill too, they are in the journal and in the file. restoreJournal brings them back.
void deleteFromJournal(Installation& installation, const JournalDeletion& deletion, Observer& observer);

/// Opens a file that is a journal, for reading; a Refusal for any other.
[[nodiscard]] std::shared_ptr<Database> openSavedJournal(Installation& installation, const std::string& path);
/// The folder where dumps are archived, and journals that were deleted.
[[nodiscard]] std::string backupFolder(Installation& installation);
/// Names of journals in it begin so.
inline constexpr const char* deletedJournalName = "Journal before ";

}  // namespace voxa
