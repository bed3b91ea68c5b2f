#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "platform/notice.h"
#include "platform/observer.h"

namespace voxa {

/// What became of a row or a controller in a piece of work.
enum class Outcome {
  done,       ///< as it should be, everywhere
  unchanged,  ///< nothing was to be done
  waiting,    ///< for a line that is not in use
  silent,     ///< did not answer: what it should have got stays marked
  failed
};

/// What work has done, row by row and controller by controller, as values. Texts are made from it at the
/// edge: a command prints them, a member of the tables shows a box.
struct Report {
  struct Row {
    std::string row;  ///< "Daily program 7"
    Outcome outcome = Outcome::done;
    std::vector<Notice> notices = {};  ///< what to tell of it
  };
  struct Controller {
    ControllerPlace place;
    std::string name;  ///< "Local Controller 3  -  Front door"
    Outcome outcome = Outcome::done;
    std::string reason = {};  ///< in words, "" when there is nothing to say
  };

  std::vector<Row> rows;
  std::vector<Controller> controllers;
  std::vector<Notice> notices;  ///< what to tell of the whole, behind what is told of the rows
  bool broken = false;          ///< it failed as a whole, whatever the rows say

  /// Everything that is to be told, in its order.
  [[nodiscard]] std::vector<Notice> allNotices() const;
  /// Whether it is broken, a row failed, or a notice tells of a failure.
  [[nodiscard]] bool failed() const;
  [[nodiscard]] std::size_t rowsWith(Outcome outcome) const;
  /// Behind another's: one report of both.
  void add(Report other);
};

[[nodiscard]] std::vector<std::string> namesOf(const std::vector<Report::Controller>& controllers);

}  // namespace voxa
