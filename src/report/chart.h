#pragma once

#include <string>
#include <vector>

#include "report/figures.h"

namespace voxa {

/// A part of a bar, for one outcome.
struct BarPart {
  const char* kind;  ///< "granted", "time", "rights", "unknown"
  double from = 0;   ///< in hundredths of the chart's length
  double size = 0;
};
/// What the colour of a kind means.
struct BarKind {
  const char* kind;
  const char* meaning;
};
[[nodiscard]] const std::vector<BarKind>& barKinds();

/// A bar that lies, beside a name.
struct Bar {
  std::string name;
  std::string text;  ///< the value
  std::vector<BarPart> parts;
};

/// What a bar stands for.
struct Measured {
  std::string name;
  std::string text;
  Outcomes outcomes;
};
/// Bars beside each other in scale: the longest one has the whole length.
[[nodiscard]] std::vector<Bar> barsOf(const std::vector<Measured>& all);

/// Bars that stand, one for each of a row of times.
struct ColumnChart {
  enum class Mark : unsigned char { always, wide, none };  ///< where its mark is shown on the axis
  struct Column {
    std::string text;  ///< time and value
    std::string mark;
    Mark shown = Mark::none;
    std::vector<BarPart> parts;  ///< from the top
  };
  struct GridLine {
    double from = 0;  ///< in hundredths of the height, from the top
    std::string amount;
  };
  std::string title;
  std::string text;  ///< what is to be seen in it
  std::vector<GridLine> grid;
  std::vector<Column> columns;
};
struct Marked {
  std::string name;
  std::string mark;
  Outcomes outcomes;
};
[[nodiscard]] ColumnChart columnsOf(std::string title, const std::vector<Marked>& all);

}  // namespace voxa
