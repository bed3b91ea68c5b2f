#pragma once

#include <cstdint>

#include "site/storage.h"

/// The driver's operations on the controllers of a site. Each is part of the caller's transaction, takes a
/// station number and an address as Line::send, and returns a result of site/results.h. What the disk refuses
/// raises site::Failure.
namespace driver {

/// Asks for the clocks. To each controller: writes the station result file too; the result is 100 when all
/// answered.
std::int16_t readDate(site::Storage& storage, int station, int address);
/// Sets the clocks from the PC's.
std::int16_t sendDate(site::Storage& storage, int station, int address);
std::int16_t readStatus(site::Storage& storage, int station, int address);
/// Makes "J.DAT" of the current folder anew from the records not yet read, controller after controller;
/// leaves none when no controller could be read.
std::int16_t readMemory(site::Storage& storage, int station, int address);
std::int16_t resetReadPointer(site::Storage& storage, int station, int address);
std::int16_t sendClear(site::Storage& storage, int station, int address);
/// Sends the lines of the command file that the ini file names.
std::int16_t sendCommand(site::Storage& storage, int station, int address);

/// Marks the line as connected or not.
std::int16_t connect(site::Storage& storage, int station, bool connected);

}  // namespace driver
