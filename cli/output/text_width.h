#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace voxa::cli {

/// How many places of a line a terminal gives a text: two to a wide character (East Asian, most pictures),
/// none to one that is put over the one before it.
[[nodiscard]] std::size_t textWidth(std::string_view utf8);

/// The text in lines of at most so many places, at blanks; a word that is longer is split. width: 0 for no
/// limit. A line feed in the text begins a line, too. There is always one line.
[[nodiscard]] std::vector<std::string> wrapped(const std::string& utf8, std::size_t width);

}  // namespace voxa::cli
