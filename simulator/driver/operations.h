#pragma once

#include <cstdint>

#include "site/storage.h"

/// The driver's operations on the controllers of a site. Each is a part of the caller's transaction. It takes
/// a station number and an address, as Line::send does, and returns a result of site/results.h. What the disk
/// refuses raises site::Failure.
namespace driver {

/// Asks for the clocks. A call to each controller also writes the station result file; its result is 100 when
/// all of them answered.
std::int16_t readDate(site::Storage& storage, int station, int address);
/// Sets the clocks to the PC's time.
std::int16_t sendDate(site::Storage& storage, int station, int address);
std::int16_t readStatus(site::Storage& storage, int station, int address);
/// Makes "J.DAT" in the current folder anew, from the records that were not read yet, one controller after
/// the other. Leaves no such file when no controller could be read.
std::int16_t readMemory(site::Storage& storage, int station, int address);
std::int16_t resetReadPointer(site::Storage& storage, int station, int address);
std::int16_t sendClear(site::Storage& storage, int station, int address);
/// Sends the lines of the command file; the ini file names it.
std::int16_t sendCommand(site::Storage& storage, int station, int address);

/// Marks the line as connected or not: a dial-up line reaches its controllers only while it is.
std::int16_t connect(site::Storage& storage, int station, bool connected);

}  // namespace driver
