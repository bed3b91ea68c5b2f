#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace voxa {

/// A text for files of code page 1252: its characters that the page has stay as they are, runs of others
/// become Latin letters ("Łódź" is "Lódz", "Иван" is "Ivan"). Characters for which there are no Latin letters
/// stay, too. None when the computer has no library that can do this: ICU, which is loaded when this is first
/// called. Of the text only well-formed UTF-8 is understood.
[[nodiscard]] std::optional<std::string> inLatinLetters(std::string_view utf8);

/// Whether code page 1252 has the characters of a text, which is UTF-8.
[[nodiscard]] bool isOfCp1252(std::string_view utf8);

}  // namespace voxa
