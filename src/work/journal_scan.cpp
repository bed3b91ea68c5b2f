#include "work/journal_scan.h"

#include <algorithm>

namespace voxa {

bool isIndexed(const Database& journal) {
  return journal.tableDef("Journal").index(journalDateIndex) != nullptr;
}

std::int32_t lastJournalRow(Database& journal) {
  std::int32_t last = 0;
  journal.visitRows("select top 1 Id from Journal order by Id desc", [&](const Value* row) {
    last = row[0].toInt32();
    return false;
  });
  return last;
}

void scanJournal(Database& journal, const JournalCondition& condition, const std::string& columns,
                 ScanOrder order, const std::function<bool(const Value* row)>& visit) {
  const bool backwards = order == ScanOrder::lastReadFirst;
  if (!backwards && condition.isIndexed() && isIndexed(journal)) {
    return journal.visitRows(condition.statement(columns), visit, condition.values());
  }
  constexpr std::int32_t step = 500'000;
  const std::int32_t last = lastJournalRow(journal);
  const std::int32_t steps = last / step + 1;
  bool goesOn = true;
  for (std::int32_t i = 0; i < steps && goesOn; ++i) {
    const std::int32_t first = (backwards ? steps - 1 - i : i) * step;
    JournalCondition part = condition;
    // Numbers may be below 0 in a journal from elsewhere.
    if (first > 0) part.add("Id >= ?", "long", first);
    part.add("Id <= ?", "long", first + std::min(step - 1, last - first));
    journal.visitRows(
        part.statement(columns, backwards ? "order by Id desc" : ""),
        [&](const Value* row) { return goesOn = visit(row); }, part.values());
  }
}

}  // namespace voxa
