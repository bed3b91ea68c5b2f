#include "lines/line_speed.h"

#include <algorithm>

namespace voxa {

std::string speedLine(std::int32_t bitsPerSecond) {
  constexpr char speedChange = '\x7f';
  const auto* const found = std::find(lineSpeeds.begin(), lineSpeeds.end(), bitsPerSecond);
  return speedChange + (found == lineSpeeds.end() ? "" : std::to_string(found - lineSpeeds.begin()));
}

}  // namespace voxa
