#pragma once

#include <sys/resource.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace voxa::crash {

/// How a child process ended.
struct Ended {
  bool killed = false;   ///< by us, before it had ended by itself
  bool crashed = false;  ///< by a signal that nobody sent it
  int status = 0;        ///< its exit status otherwise
  double seconds = 0;    ///< from its start
  std::string said;      ///< on its standard output and error
};

/// What a child is made to suffer.
struct Fate {
  std::optional<double> killAfter = {};  ///< SIGKILL so many seconds after its start
  std::optional<rlim_t> fileSize = {};   ///< bytes that a file of its can grow to
};

/// Runs work, which may exec, in a child process; what it returns is the exit status. Standard input is
/// empty, the output goes through the file `output`. No database may be open in this process.
Ended run(const std::function<int()>& work, const Fate& fate, const std::filesystem::path& output);

}  // namespace voxa::crash
