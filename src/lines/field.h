#pragma once

#include <cstdint>
#include <string>

namespace voxa {

/// A number as a field of a command line: decimal, with zeros on the left up to `width` digits. Raises
/// `err::overflow` for a number below `least` or with more digits: the controller would read it as another
/// row's number, or read the fields behind it wrongly. what: name of the field in the error ("card number").
/// The error of a secret field does not repeat the number.
enum class FieldKind { shown, secret };
[[nodiscard]] std::string numberField(std::int32_t number, std::int32_t least, int width, const char* what,
                                      FieldKind kind = FieldKind::shown);

}  // namespace voxa
