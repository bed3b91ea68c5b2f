#pragma once

#include <vector>

#include "expect.h"

namespace voxa::cli {

class Session;

/// Compares the journal, row by row, with what is expected to be in it, everything and nothing else. Prints
/// how often each reason was expected, the outcomes of each door on both sides, and the first differences.
/// Returns the number of differences: rows that say something else, are missing, or are too many.
int compareWithJournal(Session& session, const std::vector<Expected>& expected);

}  // namespace voxa::cli
