#pragma once

#include <functional>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "output/cell.h"

namespace voxa::cli {

/// The rows of a list: hands the cells of each, one for each column, to its argument.
using ListRows = std::function<void(const std::function<void(const std::vector<Cell>&)>&)>;

/// Prints a list for a person, in aligned columns, or for a program, as a JSON array of objects whose keys
/// are the column names without blanks: "LastContact" of "Last contact". Rows are written as they come, so
/// that a list may be longer than the memory; for aligned columns they are asked for twice, once for the
/// widths. On a terminal texts that do not fit are wrapped within their column.
void printList(std::ostream& out, const std::vector<std::string>& columns, bool json, const ListRows& rows);

/// Prints a list for a spreadsheet, as csv.h has it, lines ended by CR LF. Null is an empty field.
void printCsv(std::ostream& out, const std::vector<std::string>& columns, const ListRows& rows);

/// Prints one thing: for a person a line for each of its columns, for a program one JSON object with these
/// keys. A line feed in a cell begins another line below it.
void printOne(std::ostream& out, const std::vector<std::string>& columns, const std::vector<Cell>& cells,
              bool json);

/// A list that is short enough to be held.
class TableOutput {
 public:
  explicit TableOutput(std::vector<std::string> columns) : columns_(std::move(columns)) {}

  /// cells: one for each column.
  void add(std::vector<Cell> cells) { rows_.push_back(std::move(cells)); }
  [[nodiscard]] bool empty() const { return rows_.empty(); }

  void print(std::ostream& out, bool json) const;
  [[nodiscard]] nlohmann::ordered_json json() const;

 private:
  std::vector<std::string> columns_;
  std::vector<std::vector<Cell>> rows_;
};

/// Prints a JSON value, bytes that are no UTF-8 replaced.
void printJson(std::ostream& out, const nlohmann::ordered_json& value);

}  // namespace voxa::cli
