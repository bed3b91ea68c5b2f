#include "work/card_usage.h"

#include <charconv>
#include <set>

#include "platform/database/database.h"
#include "work/card_history.h"
#include "work/installation.h"
#include "work/journal_list.h"

namespace voxa {

namespace {

/// The number of the card in a transaction's data; 0 when there is none of a known card.
std::int32_t numberIn(const Value& type, const Value& data) {
  constexpr std::size_t width = 8;
  const auto* text = std::get_if<std::string>(&data.data());
  if (text == nullptr || text->size() != width || type.isNull()) return 0;
  const TransactionMeaning meaning = meaningOf(type.toText());
  if (meaning == TransactionMeaning::unknownCard || meaning == TransactionMeaning::other) return 0;
  std::int32_t number = 0;
  const char* const begin = text->data() + 2;
  (void)std::from_chars(begin, begin + 4, number);
  return number;
}

}  // namespace

std::optional<LastUse> lastUse(Installation& installation, std::int32_t id) {
  const CardOwners owners(installation);
  const auto numbers = owners.numbersOf(id);
  const std::set<std::int32_t> had(numbers.begin(), numbers.end());
  std::optional<LastUse> last;
  openedJournal(installation)
      ->visitRows("select [Date], TransactionType, TransactionData, ReaderName from Journal order by Id desc",
                  [&](const Value* row) {
                    const std::int32_t number = numberIn(row[1], row[2]);
                    if (!had.contains(number) || row[0].isNull()) return true;
                    const DateTime date = row[0].toDateTime();
                    if (owners.ownerAt(number, date) != id) return true;
                    last = {date, row[3].isNull() ? "" : row[3].toText(), meaningOf(row[1].toText())};
                    return false;
                  });
  return last;
}

void leaveOutUsed(Installation& installation, std::vector<CardRow>& cards) {
  const CardOwners owners(installation);
  std::set<std::int32_t> unused;
  for (const CardRow& card : cards) unused.insert(card.id);
  openedJournal(installation)
      ->visitRows("select [Date], TransactionType, TransactionData from Journal", [&](const Value* row) {
        const std::int32_t number = numberIn(row[1], row[2]);
        if (number != 0 && !row[0].isNull()) unused.erase(owners.ownerAt(number, row[0].toDateTime()));
        return !unused.empty();
      });
  std::erase_if(cards, [&](const CardRow& card) { return !unused.contains(card.id); });
}

}  // namespace voxa
