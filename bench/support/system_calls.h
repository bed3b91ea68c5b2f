#pragma once

#include <string>

namespace voxa::bench {

enum class Traced { ours, rival };

/// What the measured part of a process asked of the operating system.
struct CallCount {
  int all = 0;
  int syncs = 0;  ///< those among them that wait for the disk
};

struct SystemCalls {
  CallCount ours;
  CallCount rival;
};

/// Argument that makes this program the watched process: traceOption BENCHMARK ours|rival.
inline constexpr const char* traceOption = "--trace";

/// Runs this program once more as the watched process of a benchmark, under strace, and counts the calls
/// between its two marks. Raises std::runtime_error when strace is missing, may not watch, or saw no marks.
[[nodiscard]] CallCount trace(const std::string& benchmark, Traced side);

/// The marks: system calls that do nothing and that nothing else makes.
void markTraceBegin();
void markTraceEnd();

}  // namespace voxa::bench
