#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace voxa {

class Installation;
class Observer;

/// What a comparison of the archived dumps with the journal found.
struct JournalVerification {
  struct Line {
    std::string file;
    std::size_t number = 0;
    std::string text;
  };
  std::size_t files = 0;
  std::size_t lines = 0;      ///< that are transactions
  std::size_t undecoded = 0;  ///< that are none
  std::size_t inJournal = 0;
  std::size_t inSaved = 0;       ///< no longer in the journal, but in a file that `journal delete` made
  std::size_t unknownCards = 0;  ///< in neither; who asks for the code of an unknown card takes the row out
  std::size_t missing = 0;       ///< in neither, and not to be explained
  std::vector<Line> firstMissing{};  ///< some of them
};

/// Compares every line of every dump in the folder Backup with the rows of the journal, and with those of the
/// journals that deleteFromJournal has left in that folder: station, minute, type and data, each row for one
/// line of a file. Names are not compared: they are those of the time of reading. Changes nothing.
/// also: the path of another saved journal, "" for none.
[[nodiscard]] JournalVerification verifyJournal(Installation& installation, const std::string& also,
                                                Observer& observer);

}  // namespace voxa
