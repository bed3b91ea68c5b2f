#pragma once

#include <string>
#include <vector>

#include "crash/checks.h"
#include "crash/plant.h"

namespace voxa::crash {

/// Something that a process does to an installation and may not live to finish.
struct Operation {
  const char* name;
  /// Gives a renewed installation what the operation is about.
  void (*prepare)(Plant& plant);
  /// In the child process: does it; the exit status.
  int (*work)(const Plant& plant);
  /// Whether all that it is for is done.
  bool (*done)(const Plant& plant);
  /// What must hold at any moment besides what check() looks at.
  void (*whole)(const Plant& plant, Findings& findings);
  bool command;  ///< a command of voxa, whose start does nothing yet; otherwise a call of the library
  /// Whether it can be killed several times in a row; otherwise it begins from what prepare() made.
  bool repeats;
  /// Commands, one of which comes next and leaves no card on a controller that is in no table. None: the
  /// operation itself is attempted again at once.
  std::vector<std::vector<std::string>> next = {};
};

[[nodiscard]] const std::vector<Operation>& operations();

}  // namespace voxa::crash
