#pragma once

#include <string_view>

namespace voxa::dialect {

/// Whether `word` is the keyword in any case. keyword: in lower-case ASCII letters.
[[nodiscard]] constexpr bool isWord(std::string_view word, std::string_view keyword) {
  if (word.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if ((word[i] | 0x20) != keyword[i]) return false;
  }
  return true;
}

}  // namespace voxa::dialect
