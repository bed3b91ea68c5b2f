#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "site/controllers.h"

/// A controller's transaction memory: a ring with a read pointer.
namespace site {

/// Adds a record. A full memory loses its oldest one.
void record(Storage& storage, Controller& controller, std::string_view line);

/// Appends the records from the read pointer on to `dump`, each with CR LF. Moves the pointer behind those
/// that were read whole. Returns 100, or 5 when the line was cut. The first read after records were lost
/// returns 101 and reads nothing.
std::int16_t readMemory(Storage& storage, Controller& controller, std::string& dump);

/// Sets the read pointer to the oldest record.
void resetReadPointer(Storage& storage, Controller& controller);

/// Erases the records that the read pointer has passed. 100, or the code with which the controller refuses a
/// clear.
std::int16_t clearRead(Storage& storage, Controller& controller);

[[nodiscard]] Memory memoryOf(Storage& storage, const Controller& controller);

}  // namespace site
