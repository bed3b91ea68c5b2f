#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace voxa {

// Tables as text. Fields are separated by commas, or by another character where one is given. Lines end with
// CR LF or LF. A field that has separators, quotes or line ends stands in quotes; quotes inside it are
// doubled.

struct CsvRecord {
  std::size_t line = 0;  ///< number of the line where it begins, from 1
  std::vector<std::string> fields;
  std::string fault;  ///< why it cannot be read; "" for a record that can
};

/// Reads the records of a text and leaves out empty lines. Of a faulty record only the first line is taken;
/// the lines behind it are read on their own.
[[nodiscard]] std::vector<CsvRecord> readCsv(std::string_view text, char delimiter = ',');

/// The field as it is written. It stands in quotes where it needs them. It gets an apostrophe in front when a
/// spreadsheet would take it for a formula (it begins with = + - @, a tab or a carriage return).
[[nodiscard]] std::string csvField(const std::string& text);
/// The text of a field that was read, without that apostrophe.
[[nodiscard]] std::string csvText(const std::string& field);

}  // namespace voxa
