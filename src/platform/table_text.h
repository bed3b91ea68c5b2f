#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace voxa {

// Text files of tables as other programs write them: which encoding they have and what separates their
// fields.

/// utf-8, utf-16 (with a byte order mark) or cp1252, in any case; none for any other word.
enum class TextEncoding { utf8, utf16, cp1252 };
[[nodiscard]] std::optional<TextEncoding> encodingNamed(std::string_view word);

/// The bytes of a file as UTF-8, without a byte order mark. Without an encoding a byte order mark tells it;
/// else it is UTF-8 where the bytes are, and code page 1252 where not. What is no UTF-16 becomes U+FFFD, what
/// is no UTF-8 stays.
[[nodiscard]] std::string decodedText(std::string_view bytes, std::optional<TextEncoding> encoding = {});

/// The separator of a word: a comma, semicolon or "tab", or one character; none for any other.
[[nodiscard]] std::optional<char> delimiterNamed(std::string_view word);
/// The one of comma, semicolon and tab that the first line of a table has most often outside of quotes; a
/// comma when it has none.
[[nodiscard]] char delimiterOf(std::string_view table);

}  // namespace voxa
