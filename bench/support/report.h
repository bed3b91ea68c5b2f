#pragma once

#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace voxa::bench {

/// One line of the report. ratio = ours / rival; none beside a 0. The limit is on the ratio, or on `ours`
/// when there is no rival.
struct Row {
  std::string name;
  std::string unit;
  double ours = 0;
  std::optional<double> rival{};
  std::optional<double> limit{};

  [[nodiscard]] std::optional<double> ratio() const {
    return rival.value_or(0) != 0 ? std::optional(ours / *rival) : std::nullopt;
  }
  [[nodiscard]] bool missed() const { return limit && ratio().value_or(ours) > *limit; }
};
using Rows = std::vector<Row>;

/// Prints an aligned table, in which rows over their limit are marked.
void printTable(std::ostream& out, const Rows& rows);

/// Writes a list of objects with the keys name, unit, ours, rival, ratio and limit; a value that does not
/// exist is null. Raises std::runtime_error when the file cannot be written.
void writeJson(const std::string& path, const Rows& rows);

}  // namespace voxa::bench
