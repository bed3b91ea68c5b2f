#pragma once

#include <cstdint>

namespace site::result {

/// The results of the nine driver operations. A controller told to refuse with a code of its own returns that
/// code as it is, whatever it means here.
inline constexpr std::int16_t success = 100;

/// Not an address of the line (neither 0, 41 to 56 nor 95), or no controller of the site has it.
inline constexpr std::int16_t unknownController = 1;
/// The controller keeps silent.
inline constexpr std::int16_t noAnswer = 2;
/// The line runs at another speed than the controller: what comes back, if anything, is noise.
inline constexpr std::int16_t garbled = 3;
/// The controller understood the call and refuses it.
inline constexpr std::int16_t refused = 4;
/// The line broke in the middle of a memory read; "J.DAT" holds what came before.
inline constexpr std::int16_t cutOff = 5;

/// The site file, or a file the driver writes for its caller, cannot be opened, read or written.
inline constexpr std::int16_t storageFailed = 14;
/// The station's ini file names no command file, or the one it names is missing.
inline constexpr std::int16_t noCommandFile = 15;
/// The station has no ini file in the current folder.
inline constexpr std::int16_t noIniFile = 16;

/// The transaction memory lost records since its read pointer was last reset. Nothing was read: reset the
/// pointer and read again. Told once.
inline constexpr std::int16_t memoryOverflowed = 101;

}  // namespace site::result
