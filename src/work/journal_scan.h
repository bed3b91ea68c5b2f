#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "work/journal_condition.h"

namespace voxa {

/// The name of the index of dates, which a journal has when a person asked for it.
inline constexpr const char* journalDateIndex = "Date";
[[nodiscard]] bool isIndexed(const Database& journal);

/// The highest number of a row; 0 without one.
[[nodiscard]] std::int32_t lastJournalRow(Database& journal);

enum class ScanOrder { any, lastReadFirst };

/// Goes through the rows of a journal that meet a condition until `visit` says no. Where all rows have to be
/// looked at, the file is locked for some of them at a time: whoever reads controllers can write in between.
void scanJournal(Database& journal, const JournalCondition& condition, const std::string& columns,
                 ScanOrder order, const std::function<bool(const Value* row)>& visit);

}  // namespace voxa
