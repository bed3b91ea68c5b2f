#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace voxa::lock {

/// What the platforms do differently for a lock file; one source each. Paths are native ones.

using Handle = std::intptr_t;
inline constexpr Handle none = -1;

/// Opens it, making it when it is missing, for its owner alone; `none` on failure, with the errno value in
/// `error`: EBUSY when another process lets nobody else open it. ELOOP for a link, a pipe or a device.
[[nodiscard]] Handle open(const std::string& path, int& error);
void close(Handle handle);
/// Whether the file is still there for others to find: not deleted meanwhile.
[[nodiscard]] bool isThere(Handle handle);
/// Takes the lock, or says that another has it. Where the file system has no locks everybody gets it.
[[nodiscard]] bool tryLock(Handle handle);
void unlock(Handle handle);
/// What the file says, also while another holds it: its first 256 bytes.
[[nodiscard]] std::string read(Handle handle);
/// Replaces what it says. What cannot be written is left: it only makes a refusal plainer.
void write(Handle handle, std::string_view text);

[[nodiscard]] std::uint32_t processId();
[[nodiscard]] std::string programName();

}  // namespace voxa::lock
