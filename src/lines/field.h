#pragma once

#include <cstdint>
#include <string>

namespace voxa {

/// A number as a field of a command line: decimal, zeros on the left to `width` digits. One below `least`, or
/// with more digits, raises `err::overflow`: it would be read as another row's number, or shift the fields
/// behind it. what: as the failure names it ("card number").
[[nodiscard]] std::string numberField(std::int32_t number, std::int32_t least, int width, const char* what);

}  // namespace voxa
