#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace voxa {

/// Greatest number of characters of a card's code or a site's code.
inline constexpr std::size_t codeLength = 8;

/// A card's or site's code as the controllers spell it. Digits stay as they are. The letters A to F, in any
/// case, become the six characters behind 9, ":" to "?". These six stay as they are, since controllers use
/// them for the codes of unknown cards. Any other character, or more than eight, raises
/// `err::invalidArgument`.
[[nodiscard]] std::string controllerCode(std::string_view code);
/// The same with blanks on the left, up to 8 characters. A card's line has the code in this form.
[[nodiscard]] std::string convertCardCode(std::string_view code);
/// The reverse: the code as people write it, with the letters A to F.
[[nodiscard]] std::string shownCode(std::string_view code);

}  // namespace voxa
