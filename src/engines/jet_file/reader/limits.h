#pragma once

#include <cstdint>

namespace voxa::jet {

/// What this program takes from itself before it opens a file: memory and processor time beyond the limits,
/// files to write, core dumps, new rights. seconds: of processor time.
void limitResources(std::uint64_t memoryBytes, std::uint64_t seconds);

/// Called when everything is open: from now on the system only reads and writes what is open and hands out
/// memory. Any other call fails.
void limitCalls();

}  // namespace voxa::jet
