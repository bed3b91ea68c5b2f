#pragma once

#include <string>
#include <vector>

#include "crash/checks.h"
#include "crash/plant.h"

namespace voxa::crash {

/// Something that a process does to an installation and may be killed at.
struct Operation {
  const char* name;
  /// Gives a renewed installation what the operation needs.
  void (*prepare)(Plant& plant);
  /// Does the operation, in the child process. Returns the exit status.
  int (*work)(const Plant& plant);
  /// Whether the operation has done everything.
  bool (*done)(const Plant& plant);
  /// Checks what must hold at any moment, beside what check() looks at.
  void (*whole)(const Plant& plant, Findings& findings);
  bool command;  ///< a command of voxa, whose start does nothing yet; otherwise a call of the library
  /// Whether it can be killed several times in a row. If not, each attempt begins with what prepare() made.
  bool repeats;
  /// Commands, one of which is run next. After it no controller may have a card that is in no table. None:
  /// the operation itself is attempted again at once.
  std::vector<std::vector<std::string>> next = {};
};

[[nodiscard]] const std::vector<Operation>& operations();

}  // namespace voxa::crash
