#pragma once

#include <iosfwd>
#include <string>

#include "work/journal_list.h"

namespace voxa::cli {

/// "24/12/2026 18:05  Ada Byron, Front door, granted".
[[nodiscard]] std::string sentenceOf(const JournalRow& row);

enum class JournalForm { sentences, table, csv, json };

/// Prints the transactions of a list as they are found.
void printJournal(std::ostream& out, const JournalList& list, JournalForm form);

}  // namespace voxa::cli
