#pragma once

#include <string>
#include <string_view>

namespace voxa {

/// What a transaction's two-digit type code says about the card that was presented.
enum class TransactionMeaning { granted, refusedByTime, refusedByRights, unknownCard, other };

[[nodiscard]] TransactionMeaning meaningOf(std::string_view typeCode);
[[nodiscard]] const char* textOf(TransactionMeaning meaning);  ///< "granted", "refused by time" ...

}  // namespace voxa
