#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "report/chart.h"

namespace voxa {

struct Figures;

// The report in words, as a page has it: what is said, in which order, and where bars begin and end. How it
// looks is the template's (page.mustache).

struct PageTable {
  struct Row {
    std::string head;
    std::vector<std::string> cells;
  };
  std::string caption;
  bool closed = false;  ///< it is opened by whoever wants the values of a chart
  std::vector<std::string> headings;
  std::vector<bool> numbers;  ///< which columns are numbers
  std::vector<Row> rows;
};

struct PageSection {
  std::string id;  ///< unique on the page
  std::string heading;
  bool whole = false;  ///< it needs the whole width
  std::vector<std::string> sentences;
  bool legend = false;  ///< the colours of the chart are told
  std::optional<ColumnChart> chart{};
  std::vector<Bar> bars{};
  std::vector<PageTable> tables{};
};

struct Page {
  struct Tile {
    std::string label, value, note;
  };
  std::string title;
  std::vector<std::string> scope;    ///< what it is of
  std::vector<std::string> summary;  ///< for who reads no further
  std::vector<Tile> tiles;
  std::vector<PageSection> sections;
  std::string made;  ///< when, and what is counted
};

[[nodiscard]] Page pageOf(const Figures& figures);

}  // namespace voxa
