#pragma once

namespace voxa {
class CardChanges;
}

namespace voxa::cli {

/// Prints what changes of cards would replace, a line a value, and the cards that would be new.
void printDifferences(const CardChanges& changes);

}  // namespace voxa::cli
