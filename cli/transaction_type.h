#pragma once

#include <string>
#include <string_view>

namespace voxa::cli {

/// What a transaction's two-digit type code says about the card that was presented.
enum class TransactionMeaning { granted, refusedByTime, refusedByRights, unknownCard, other };

[[nodiscard]] TransactionMeaning meaningOf(std::string_view typeCode);
[[nodiscard]] const char* textOf(TransactionMeaning meaning);  ///< "granted", "refused by time" ...

/// The code of an unknown card as people write it: the controllers spell A to F as the characters ":" to "?".
[[nodiscard]] std::string shownCode(std::string_view data);

}  // namespace voxa::cli
