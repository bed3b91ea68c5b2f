#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace voxa {

/// What a transaction's two-digit type code says about the card that was presented.
enum class TransactionMeaning { granted, refusedByTime, refusedByRights, unknownCard, other };

[[nodiscard]] TransactionMeaning meaningOf(std::string_view typeCode);
/// The number of the card in a transaction's data; 0 when there is none of a known card.
[[nodiscard]] std::int32_t cardNumberIn(TransactionMeaning meaning, std::string_view data);
[[nodiscard]] const char* textOf(TransactionMeaning meaning);  ///< "granted", "refused by time" ...

}  // namespace voxa
