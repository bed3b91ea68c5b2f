#pragma once

#include <cstdint>

namespace site::result {

/// The results of the nine driver operations. A controller can be told to refuse with a code of its own. It
/// then returns that code, whatever the code means here.
inline constexpr std::int16_t success = 100;

/// The address is none of the line's (0, 41 to 56, 95), or no controller of the site has it.
inline constexpr std::int16_t unknownController = 1;
/// The controller keeps silent, its answer was lost, or its line is a dial-up line that is not connected.
inline constexpr std::int16_t noAnswer = 2;
/// The line runs at another speed than the controller. What comes back, if anything, is noise.
inline constexpr std::int16_t garbled = 3;
/// The controller understood the call and refused it.
inline constexpr std::int16_t refused = 4;
/// The line broke during a memory read: "J.DAT" holds what came before. Or during a command file: the
/// controller has the lines before.
inline constexpr std::int16_t cutOff = 5;

/// The site file, or a file that the driver writes for its caller, cannot be opened, read or written.
inline constexpr std::int16_t storageFailed = 14;
/// The station's ini file names no command file, or the one it names is missing.
inline constexpr std::int16_t noCommandFile = 15;
/// The station has no ini file in the current folder.
inline constexpr std::int16_t noIniFile = 16;

/// The transaction memory has lost records since the last reset of its read pointer. Nothing was read: reset
/// the pointer and read again. This is told once.
inline constexpr std::int16_t memoryOverflowed = 101;

}  // namespace site::result
