#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace voxa {

// Tables as text: fields separated by commas, lines ended by CR LF or LF, quotes around a field that has
// commas, quotes (doubled) or line ends.

struct CsvRecord {
  std::size_t line = 0;  ///< where it begins, from 1
  std::vector<std::string> fields;
  std::string fault;  ///< why it cannot be read; "" for a record that can
};

/// The records of a text, empty lines left out. A faulty record is its first line only.
[[nodiscard]] std::vector<CsvRecord> readCsv(std::string_view text);

/// The field as it is written: in quotes where it needs them, and behind an apostrophe when a spreadsheet
/// would take it for a formula (it begins with = + - @, a tab or a carriage return).
[[nodiscard]] std::string csvField(const std::string& text);
/// The text of a field that was read: without that apostrophe.
[[nodiscard]] std::string csvText(const std::string& field);

}  // namespace voxa
