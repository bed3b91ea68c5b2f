#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace voxa::lock {

/// What each platform does in its own way for a lock file, in lock_file_posix.cpp and lock_file_windows.cpp.
/// Paths are native.

using Handle = std::intptr_t;
inline constexpr Handle none = -1;

/// Opens the file, or makes it when it is missing; only its owner can use it. `none` on failure, with the
/// errno value in `error`: EBUSY when another process lets nobody else open it, ELOOP for a link, a pipe or a
/// device.
[[nodiscard]] Handle open(const std::string& path, int& error);
void close(Handle handle);
/// Whether others can still find the file, so nobody has deleted it meanwhile.
[[nodiscard]] bool isThere(Handle handle);
/// Takes the lock; false when another process has it. Everybody gets it on a file system that has no locks.
[[nodiscard]] bool tryLock(Handle handle);
void unlock(Handle handle);
/// The text of the file, its first 256 bytes, even while another process holds it.
[[nodiscard]] std::string read(Handle handle);
/// Replaces the text. A failure is ignored: the text only makes a refusal easier to understand.
void write(Handle handle, std::string_view text);

[[nodiscard]] std::uint32_t processId();
[[nodiscard]] std::string programName();

}  // namespace voxa::lock
