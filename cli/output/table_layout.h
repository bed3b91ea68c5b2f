#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace voxa::cli {

/// How many places a column of a table needs.
struct ColumnNeed {
  std::size_t whole = 0;  ///< of the heading or the widest cell
  std::size_t cells = 0;  ///< of the widest cell
  std::size_t word = 0;   ///< of the longest word of both: less would break it
  bool wordy = false;     ///< has texts of several words, which read well in several lines

  void addHeading(const std::string& heading);
  void addCell(const std::string& text);
};

struct TableLayout {
  std::vector<std::size_t> widths;  ///< of the columns; {} when they do not fit beside each other
  std::size_t gap = 2;              ///< blanks between them
};
/// Fits columns into so many places. Texts of several words give way first, then headings, then all that has
/// blanks, then the gaps. Words stay whole, up to a length that no table can bear.
[[nodiscard]] TableLayout tableLayout(const std::vector<ColumnNeed>& columns, std::size_t places);

/// The lines of a heading: broken at blanks, and before the capitals of "ToSend".
[[nodiscard]] std::vector<std::string> headingLines(const std::string& heading, std::size_t width);

}  // namespace voxa::cli
