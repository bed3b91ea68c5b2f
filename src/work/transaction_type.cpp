#include "work/transaction_type.h"

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
