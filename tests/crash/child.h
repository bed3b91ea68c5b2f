#pragma once

#include <sys/resource.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace voxa::crash {

/// How a child process ended.
struct Ended {
  bool killed = false;   ///< by this program, before it had ended by itself
  bool crashed = false;  ///< by a signal that this program did not send
  int status = 0;        ///< its exit status otherwise
  double seconds = 0;    ///< since its start
  std::string said;      ///< what it wrote to its standard output and error
};

/// What happens to a child.
struct Fate {
  std::optional<double> killAfter = {};  ///< SIGKILL so many seconds after its start
  std::optional<rlim_t> fileSize = {};   ///< greatest size in bytes of any file that it writes
};

/// Runs `work`, which may exec, in a child process. What `work` returns is the exit status. Standard input is
/// empty, the output goes through the file `output`. No database may be open in this process.
Ended run(const std::function<int()>& work, const Fate& fate, const std::filesystem::path& output);

}  // namespace voxa::crash
