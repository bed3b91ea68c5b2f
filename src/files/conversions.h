#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace voxa {

/// 0 for Null, else the value as a 16-bit integer; a value outside its range raises `err::overflow`.
[[nodiscard]] std::int16_t nullToInt(const Value& value);

/// Each hexadecimal digit as four characters "0" or "1". The digits must be upper-case. Empty text and any
/// other character raise `err::invalidArgument`.
[[nodiscard]] std::string hexToBin(std::string_view text);

/// Changes a 16-bit value to its other reading: -32768 to -1 become 32768 to 65535, and the reverse. So a
/// negative value has four hexadecimal digits. 0 to 32767 have one reading and stay as they are. From any
/// other value 65536 is subtracted; `err::overflow` when the result needs more than 32 bits.
[[nodiscard]] std::int32_t toggleSign16(std::int32_t value);

}  // namespace voxa
