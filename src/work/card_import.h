#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/table_text.h"
#include "work/card_changes.h"

namespace voxa {

class Installation;

/// How a table of cards is read.
struct CardTableFormat {
  std::optional<char> delimiter = {};         ///< found unless given
  std::optional<TextEncoding> encoding = {};  ///< found unless given
  /// Lines of cards that there are change these; else each line is a new card.
  bool update = false;
  bool transliterate = false;  ///< names may be written in Latin letters
};

/// What a table of cards would change.
struct CardImport {
  struct BadLine {
    std::size_t line = 0;  ///< where its record begins, from 1
    std::string reason;    ///< in words
  };
  CardChanges changes;            ///< all or none: to be carried out unless there are bad lines
  std::size_t unchanged = 0;      ///< lines of cards that are so already
  std::vector<BadLine> badLines;  ///< in their order
};

/// Reads a table of cards; nothing is changed yet. table: the bytes of the file; its first line names the
/// columns: name, code and group, and what there is of number, pin, until, credit, supervisor and valid. An
/// empty field is not given. A card without a number gets the lowest that no card has or had.
///
/// An update finds the card of a line by the number, else by the code, and by the name where the line has
/// neither. Then each column may be missing, and a field that is as an export writes it changes nothing. A
/// line whose card is not found is a new card.
///
/// A Refusal for a table whose first line cannot be understood.
[[nodiscard]] CardImport readCardTable(Installation& installation, std::string_view table,
                                       const CardTableFormat& format);

}  // namespace voxa
