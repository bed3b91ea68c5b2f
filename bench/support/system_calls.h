#pragma once

#include <string>

namespace voxa::bench {

enum class Traced { ours, rival };

/// The system calls of the measured part of a process.
struct CallCount {
  int all = 0;
  int syncs = 0;  ///< those of them that wait for the disk
};

struct SystemCalls {
  CallCount ours;
  CallCount rival;
};

/// With this argument the program is the watched process: traceOption BENCHMARK ours|rival.
inline constexpr const char* traceOption = "--trace";

/// Runs this program again as the watched process of a benchmark, under strace, and counts the calls between
/// its two marks. Raises std::runtime_error when strace is missing, is not permitted to watch, or saw no
/// marks.
[[nodiscard]] CallCount trace(const std::string& benchmark, Traced side);

/// The marks: system calls that do nothing. Nothing else makes them.
void markTraceBegin();
void markTraceEnd();

}  // namespace voxa::bench
