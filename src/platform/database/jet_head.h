#pragma once

#include <string_view>

namespace voxa {

/// Whether a file with these first bytes is one of the Jet database engine, or of its successor.
[[nodiscard]] constexpr bool isJetFile(std::string_view head) {
  return head.starts_with(std::string_view("\0\1\0\0Standard Jet DB\0", 20)) ||
         head.starts_with(std::string_view("\0\1\0\0Standard ACE DB\0", 20));
}

}  // namespace voxa
