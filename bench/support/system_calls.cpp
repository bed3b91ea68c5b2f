#include "support/system_calls.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace voxa::bench {

namespace {

constexpr const char* beginMark = "voxa-bench-begin";
constexpr const char* endMark = "voxa-bench-end";

void run(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t child = 0;
  const int error = posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ);
  if (error != 0) throw std::runtime_error("Cannot run " + words[0] + ": " + std::strerror(error));
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error("Lost the process " + words[0]);
  }
  if (status != 0) throw std::runtime_error(words[0] + " failed; its own message is above");
}

/// The lines of a trace are "name(arguments) = result".
CallCount countBetweenMarks(const std::string& path) {
  std::ifstream file(path);
  CallCount count;
  bool begun = false;
  for (std::string line; std::getline(file, line);) {
    if (line.find(endMark) != std::string::npos && begun) return count;
    if (begun) {
      ++count.all;
      if (line.starts_with("fsync(") || line.starts_with("fdatasync(")) ++count.syncs;
    }
    begun = begun || line.find(beginMark) != std::string::npos;
  }
  throw std::runtime_error("The trace has no marks around the measured part");
}

}  // namespace

CallCount trace(const std::string& benchmark, Traced side) {
  const std::string path = "bench-" + std::to_string(getpid()) + ".trace";
  const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
  run({"strace", "-qq", "-e", "signal=none", "-o", path, self, traceOption, benchmark,
       side == Traced::ours ? "ours" : "rival"});
  const CallCount count = countBetweenMarks(path);
  std::filesystem::remove(path);
  return count;
}

void markTraceBegin() {
  (void)access(beginMark, F_OK);
}

void markTraceEnd() {
  (void)access(endMark, F_OK);
}

}  // namespace voxa::bench
