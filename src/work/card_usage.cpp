#include "work/card_usage.h"

#include <set>
#include <utility>

#include "platform/database/database.h"
#include "work/card_history.h"
#include "work/installation.h"
#include "work/journal_filter.h"
#include "work/journal_list.h"
#include "work/journal_scan.h"

namespace voxa {

namespace {

std::int32_t numberIn(const Value& type, const Value& data) {
  const auto* text = std::get_if<std::string>(&data.data());
  return text == nullptr || type.isNull() ? 0 : cardNumberIn(meaningOf(type.toText()), *text);
}

}  // namespace

std::optional<LastUse> lastUse(Installation& installation, std::int32_t id) {
  const CardOwners owners(installation);
  const auto numbers = owners.numbersOf(id);
  if (numbers.empty()) return std::nullopt;
  JournalCondition condition;
  addNumbers(numbers, condition);
  Database& journal = *openedJournal(installation);
  const bool indexed = isIndexed(journal);
  std::optional<LastUse> last;
  std::int32_t lastId = 0;
  const auto look = [&](const Value* row) {
    const std::int32_t number = numberIn(row[1], row[2]);
    if (number == 0 || row[0].isNull()) return false;
    const DateTime date = row[0].toDateTime();
    const std::int32_t rowId = row[4].toInt32();
    if (last && std::pair(date.days, rowId) <= std::pair(last->date.days, lastId)) return false;
    if (owners.ownerAt(number, date) != id) return false;
    lastId = rowId;
    last = {date, row[3].isNull() ? "" : row[3].toText(), meaningOf(row[1].toText())};
    return true;
  };
  constexpr const char* columns = "[Date], TransactionType, TransactionData, ReaderName, Id";
  scanJournal(journal, condition, columns, ScanOrder::lastReadFirst,
              [&](const Value* row) { return !look(row) || !indexed; });
  if (!indexed || !last) return last;
  // A controller that was read late brought what is older: what is newer may have been read before.
  condition.add("[Date] > ?", "datetime", last->date);
  scanJournal(journal, condition, columns, ScanOrder::any, [&](const Value* row) {
    (void)look(row);
    return true;
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
