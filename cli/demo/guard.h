#pragma once

#include <filesystem>

namespace voxa::cli {

/// From here on a process of its own does the work: this one waits for its end, however that comes (a key, a
/// hangup), deletes the folder and ends with the same status. Returns in the process that works. Windows:
/// does nothing.
void deleteAfterThisProcess(const std::filesystem::path& folder);

}  // namespace voxa::cli
