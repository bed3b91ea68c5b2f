#pragma once

#include <cstddef>
#include <string>

namespace voxa {

class Installation;

/// Cards as a text that importCards reads: fields separated by commas, lines ended by CR LF, the first of
/// them with the names of the columns.
struct CardTable {
  std::string text;
  std::size_t cards = 0;
};
/// All cards that are not deleted, by their numbers; with their personal codes only if asked for.
[[nodiscard]] CardTable exportCards(Installation& installation, bool withPins);

}  // namespace voxa
