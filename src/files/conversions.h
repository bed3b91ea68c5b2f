#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace voxa {

/// 0 for Null, else the value as a 16-bit integer; a value outside its range raises `err::overflow`.
[[nodiscard]] std::int16_t nullToInt(const Value& value);

/// Hexadecimal digits, upper-case only, as four characters "0" or "1" each. Empty text and any other
/// character raise `err::invalidArgument`.
[[nodiscard]] std::string hexToBin(std::string_view text);

/// The other reading of a 16-bit value: -32768 to -1 becomes 32768 to 65535 and the reverse, so that a
/// negative value has four hexadecimal digits. Values of one reading only are returned as they are; 65536 is
/// subtracted from any other, `err::overflow` when the result needs more than 32 bits.
[[nodiscard]] std::int32_t toggleSign16(std::int32_t value);

}  // namespace voxa
