#pragma once

#include <string_view>

#include "platform/value.h"

namespace voxa::dialect {

/// A type as statements write it.
struct TypeWord {
  std::string_view word;  ///< in small letters
  DataType type;
  bool numbered = false;  ///< a new row takes the next number
};

/// The type that a word stands for, in any case; nullptr when it stands for none.
[[nodiscard]] const TypeWord* typeOfWord(std::string_view word);

}  // namespace voxa::dialect
