#pragma once

#include <string>

namespace voxa::bench {

/// What a journal of many rows is made of.
struct BusyJournal {
  int rows = 10'000'000;
  int readers = 64;   ///< "Reader 1" and so on, numbered alike, of station 1
  int cards = 9'999;  ///< "Card 1" and so on, by the number
  /// Rows of one reader behind one another: so much its controller held when it was read.
  int together = 100;
};

/// Fills the table of an empty journal: the rows of the year 2026, in the order in which controllers are read
/// one after the other, so that dates go back with each of them. Nine of ten are granted; the others are
/// refused by time and by rights, or of cards that are not known.
void fillJournal(const std::string& file, const BusyJournal& journal);

}  // namespace voxa::bench
