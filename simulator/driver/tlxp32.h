#pragma once

#include <cstdint>

// The calling convention of the driver's exports, and how they are made visible.
#if defined(_WIN32)
#define TLXP_EXPORT
#define TLXP_CALL __stdcall
#else
#define TLXP_EXPORT __attribute__((visibility("default")))
#define TLXP_CALL
#endif

/// The controller driver. Every operation takes a station number. All but the two that open and close the
/// line also take an address: 41 to 56 for controller 1 to 16, 0 for each controller of the station's ini
/// file one after the other, 95 for all at once. The driver works in the folder that is current at the call,
/// on the site of that moment (site::defaultFolder). It returns a result of site/results.h. One call at a
/// time.
extern "C" {
TLXP_EXPORT std::int16_t TLXP_CALL RDDAT(std::int16_t station, std::int16_t address);
TLXP_EXPORT std::int16_t TLXP_CALL SDDAT(std::int16_t station, std::int16_t address);
TLXP_EXPORT std::int16_t TLXP_CALL RDSTAT(std::int16_t station, std::int16_t address);
TLXP_EXPORT std::int16_t TLXP_CALL RDMEM(std::int16_t station, std::int16_t address);
TLXP_EXPORT std::int16_t TLXP_CALL SDRST(std::int16_t station, std::int16_t address);
TLXP_EXPORT std::int16_t TLXP_CALL SDCLR(std::int16_t station, std::int16_t address);
TLXP_EXPORT std::int16_t TLXP_CALL SDCMD(std::int16_t station, std::int16_t address);
TLXP_EXPORT std::int16_t TLXP_CALL CONNECT(std::int16_t station);
TLXP_EXPORT std::int16_t TLXP_CALL DISNNECT(std::int16_t station);
}
