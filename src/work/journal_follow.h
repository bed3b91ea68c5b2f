#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "work/journal_list.h"

namespace voxa {

/// Looks at the controllers again and again, and shows the transactions as they come into the journal,
/// whoever has read them. Stations that are not in use are not read, and none is dialled. The lines are free
/// between two controllers and between the rounds: other programs work on meanwhile.
class JournalFollow {
 public:
  /// Rows that are in the journal already are not shown. A Refusal as of JournalList, for a name that
  /// nothing has now, and for a filter that ends: `until`. Later rounds refuse no name.
  JournalFollow(Installation& installation, JournalFilter filter);

  /// What a person sees of a round.
  struct Seen {
    std::function<void(const JournalRow&)> transaction;
    /// A sentence: a controller that could not be read, once for each reason, and that it is read again; or
    /// why nothing could be read at all.
    std::function<void(const std::string&)> told;
    /// Asked before each controller.
    std::function<bool()> goesOn;
  };
  /// Reads each controller in use, and shows what is new.
  void round(const Seen& seen);

 private:
  void readControllers(const Seen& seen);
  void showNew(const Seen& seen);
  void note(const std::string& name, const std::string& failure, const Seen& seen);

  Installation& installation_;
  JournalFilter filter_;
  std::int16_t reader_ = 0, station_ = 0;       // that the filter names
  std::map<std::string, std::string> failing_;  // to what was told of it
};

}  // namespace voxa
