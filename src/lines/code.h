#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace voxa {

/// Greatest number of characters of a code, of a card or a site.
inline constexpr std::size_t codeLength = 8;

/// A code, of a card or a site, as the controllers spell it: digits as they are, the letters A to F (in any
/// case) as the six characters behind 9, ":" to "?". These stay as they are: in the codes of unknown cards
/// the controllers spell so, too. Any other character, or more than eight, raises `err::invalidArgument`.
[[nodiscard]] std::string controllerCode(std::string_view code);
/// The same with blanks on the left to 8 characters, as a card's code goes into its line.
[[nodiscard]] std::string convertCardCode(std::string_view code);
/// The other way round: a code as people write it, with the letters A to F.
[[nodiscard]] std::string shownCode(std::string_view code);

}  // namespace voxa
