#include "work/transaction_type.h"

#include <charconv>

namespace voxa {

namespace {

struct Family {
  TransactionMeaning meaning;
  char tens;
  char firstUnit;  // of four, one for each door position
};
constexpr Family families[] = {{TransactionMeaning::granted, '0', '0'},
                               {TransactionMeaning::refusedByTime, '2', '0'},
                               {TransactionMeaning::refusedByRights, '2', '4'},
                               {TransactionMeaning::unknownCard, '1', '0'}};

}  // namespace

TransactionMeaning meaningOf(std::string_view typeCode) {
  if (typeCode.size() != 2) return TransactionMeaning::other;
  for (const Family& family : families) {
    const int unit = typeCode[1] - family.firstUnit;
    if (typeCode[0] == family.tens && unit >= 0 && unit < 4) return family.meaning;
  }
  return TransactionMeaning::other;
}

std::int32_t cardNumberIn(TransactionMeaning meaning, std::string_view data) {
  constexpr std::size_t width = 8;
  if (meaning == TransactionMeaning::unknownCard || meaning == TransactionMeaning::other) return 0;
  if (data.size() != width) return 0;
  std::int32_t number = 0;
  const char* const end = data.data() + 6;
  const auto read = std::from_chars(data.data() + 2, end, number);
  return read.ptr == end && number > 0 ? number : 0;
}

const char* textOf(TransactionMeaning meaning) {
  switch (meaning) {
    case TransactionMeaning::granted:
      return "granted";
    case TransactionMeaning::refusedByTime:
      return "refused by time";
    case TransactionMeaning::refusedByRights:
      return "refused by rights";
    case TransactionMeaning::unknownCard:
      return "unknown card";
    case TransactionMeaning::other:
      break;
  }
  return "other";
}

}  // namespace voxa
