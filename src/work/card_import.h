#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace voxa {

class Installation;
class Observer;

/// What became of a table of cards.
struct CardImport {
  struct BadLine {
    std::size_t line = 0;  ///< where its record begins, from 1
    std::string reason;    ///< in words
  };
  std::size_t cards = 0;          ///< how many were added, marked to be sent
  std::vector<BadLine> badLines;  ///< in their order; nothing is added when there is one
};

/// Adds the cards of a table, all or none. table: UTF-8, with or without a byte order mark; its first line
/// names the columns: name, code and group, and what there is of number, pin, until, credit, supervisor and
/// valid. An empty field is not given. A card without a number gets the lowest that no card has or had. A
/// Refusal for a table whose first line cannot be understood, and when no numbers are left.
CardImport importCards(Installation& installation, std::string_view table, Observer& observer);

}  // namespace voxa
