#include "files/conversions.h"

#include <limits>

#include "platform/error.h"

namespace voxa {

std::int16_t nullToInt(const Value& value) {
  return value.isNull() ? std::int16_t{0} : value.toInt16();
}

std::string hexToBin(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  if (text.empty()) throw Error(err::invalidArgument, "Invalid argument: no hexadecimal digits");
  std::string bits;
  bits.reserve(text.size() * 4);
  for (const char digit : text) {
    const std::size_t value = digits.find(digit);
    if (value == std::string_view::npos) {
      throw Error(err::invalidArgument,
                  "Invalid argument: '" + std::string(text) + "' is not upper-case hexadecimal");
    }
    for (unsigned bit = 8; bit != 0; bit /= 2) bits += (value & bit) != 0 ? '1' : '0';
  }
  return bits;
}

std::int32_t toggleSign16(std::int32_t value) {
  if (value >= -32768 && value <= -1) return value + 65536;
  if (value < std::numeric_limits<std::int32_t>::min() + 65536) throw Error(err::overflow, "Overflow");
  if (value >= 32768 || value < -32768) return value - 65536;
  return value;
}

}  // namespace voxa
