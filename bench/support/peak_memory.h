#pragma once

#include <functional>

namespace voxa::bench {

/// Runs `work` in a forked process and returns the most memory that this process had resident, in MiB. Raises
/// std::runtime_error when the work fails; the work's own message goes to the standard error. Call it before
/// this process opens a database: connections do not survive a fork.
[[nodiscard]] double peakMemory(const std::function<void()>& work);

}  // namespace voxa::bench
