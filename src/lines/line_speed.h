#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace voxa {

/// The speeds of a line in bit/s.
inline constexpr std::array<std::int32_t, 4> lineSpeeds = {4800, 9600, 19200, 38400};

/// The line that tells the controllers of a line to change to a speed: the character 127 and the place of the
/// speed among lineSpeeds, none for a speed that is not one of them.
[[nodiscard]] std::string speedLine(std::int32_t bitsPerSecond);

}  // namespace voxa
