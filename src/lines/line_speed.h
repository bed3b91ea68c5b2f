#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace voxa {

/// The speeds of a line in bit/s.
inline constexpr std::array<std::int32_t, 4> lineSpeeds = {4800, 9600, 19200, 38400};

/// The line that tells the controllers on a line to change its speed: the character 127 and the index of the
/// speed in lineSpeeds. There is no index for a speed that is not in lineSpeeds.
[[nodiscard]] std::string speedLine(std::int32_t bitsPerSecond);

}  // namespace voxa
