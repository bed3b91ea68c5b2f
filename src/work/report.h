#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "platform/context.h"

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
    /// What to tell of it: a text of the catalogue, the member concerned, the reason. None when nothing is.
    std::optional<FailureMessage> message = {};
  };
  struct Controller {
    ControllerPlace place;
    std::string name;  ///< "Local Controller 3  -  Front door"
    Outcome outcome = Outcome::done;
    std::string reason = {};  ///< in words, "" when there is nothing to say
  };

  std::vector<Row> rows;
  std::vector<Controller> controllers;

  [[nodiscard]] std::size_t rowsWith(Outcome outcome) const;
  [[nodiscard]] std::vector<std::string> controllersWith(Outcome outcome) const;  ///< their names
  /// Behind another's: one report of both.
  void add(Report other);
};

/// Told of the progress of work that takes long, from the thread that works.
class Observer {
 public:
  virtual ~Observer() = default;
  /// `done` of `total` rows or controllers are finished. what: "Sending".
  virtual void progress(const char* what, std::size_t done, std::size_t total) = 0;
};

}  // namespace voxa
