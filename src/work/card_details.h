#pragma once

#include <optional>
#include <string>
#include <vector>

#include "work/card_filter.h"
#include "work/card_usage.h"

namespace voxa {

class Installation;

/// All that there is to tell of one card.
struct CardDetails {
  struct Door {
    std::string reader;
    std::string program;  ///< name of the weekly program
    bool shut = false;    ///< its group grants it, but the controller keeps it shut
  };
  CardRow row;
  bool deleted = false;
  std::string note;
  std::vector<std::string> earlierNames;  ///< the last one first
  std::vector<Door> doors;                ///< that its group opens, by controller and position
  std::optional<LastUse> lastUse;
  /// What a controller has yet to be told: "Local Controller 1  -  Front: send (changed)".
  std::vector<std::string> missing;
};
/// card: number or name; also of a deleted card, when no other has it. A Refusal when there is none.
[[nodiscard]] CardDetails cardDetails(Installation& installation, const std::string& card);

}  // namespace voxa
