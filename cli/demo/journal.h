#pragma once

#include <vector>

#include "expect.h"

namespace voxa {
class Installation;
}

namespace voxa::cli {

/// Compares the journal, row by row, with what is expected to be in it, everything and nothing else. Prints
/// how often each reason was expected, the outcomes of each door on both sides, and the first differences.
/// Returns the number of differences: rows that say something else, are missing, or are too many.
int compareWithJournal(Installation& installation, const std::vector<Expected>& expected);

}  // namespace voxa::cli
