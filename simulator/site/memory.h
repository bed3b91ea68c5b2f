#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "site/controllers.h"

/// A controller's transaction memory: a ring with a read pointer.
namespace site {

/// Adds a record; a full memory loses its oldest.
void record(Storage& storage, Controller& controller, std::string_view line);

/// Appends the records from the read pointer on to `dump`, each with CR LF, and moves the pointer behind
/// those that went out whole. 100, 5 when the line was cut, or 101 (with nothing read) the first time after
/// records were lost.
std::int16_t readMemory(Storage& storage, Controller& controller, std::string& dump);

/// Sets the read pointer to the oldest record.
void resetReadPointer(Storage& storage, Controller& controller);

/// Erases the records the read pointer has passed. 100, or the code the controller refuses a clear with.
std::int16_t clearRead(Storage& storage, Controller& controller);

[[nodiscard]] Memory memoryOf(Storage& storage, const Controller& controller);

}  // namespace site
