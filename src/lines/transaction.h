#pragma once

#include <cstdint>
#include <string_view>

#include "platform/value.h"

namespace voxa {

/// One line of a memory dump, in code page 1252. Its fields have fixed positions, counted from 1: controller
/// address 1-2, (3 not used), type code 4-5, day 6-7, month 8-9, year 10-11, hour 12-13, minute 14-15, data
/// 16-23.
struct TransactionLine {
  static constexpr std::size_t width = 23;

  std::int16_t controller = 0;  ///< address on its station
  std::string_view type;        ///< two digits
  DateTime date;                ///< to the minute
  std::string_view data;        ///< eight characters; control characters and apostrophes do not occur
  /// The door of the controller, 1 to 4, that the type code names. 0 when it names none; then the transaction
  /// belongs to the door of the line before.
  std::int16_t position = 0;
  bool ofCard = false;  ///< whether the data holds a card number

  /// Characters 3 to 6 of the data; these are four digits, as a rule.
  [[nodiscard]] std::string_view cardNumber() const { return data.substr(2, 4); }
};

/// Decodes the first 23 characters of a line; a driver may append text of its own. Returns why the line is no
/// transaction, or "" when it is one. The views in `out` point into `line`; after a failure `out` has no
/// meaning. today: tells the century (fullYear).
[[nodiscard]] std::string_view decodeLine(std::string_view line, DateTime today, TransactionLine& out);

/// Whether the line holds only blanks and end marks (0x1A), which some programs put at the end of a text.
[[nodiscard]] bool isBlank(std::string_view line);

/// The number in a text of up to four digits; -1 for any other text.
[[nodiscard]] std::int16_t digitsToNumber(std::string_view text);

}  // namespace voxa
