#include "support/report.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>

namespace voxa::bench {

namespace {

using Cells = std::vector<std::string>;

std::string number(const std::optional<double>& value) {
  if (!value) return "-";
  char text[32];
  (void)std::snprintf(text, sizeof text, *value >= 100 ? "%.0f" : *value >= 10 ? "%.1f" : "%.2f", *value);
  return text;
}

nlohmann::ordered_json json(const std::optional<double>& value) {
  return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json(nullptr);
}

}  // namespace

void printTable(std::ostream& out, const Rows& rows) {
  std::vector<Cells> lines{{"name", "unit", "ours", "rival", "ratio", "limit"}};
  for (const Row& row : rows) {
    lines.push_back({row.name, row.unit, number(row.ours), number(row.rival), number(row.ratio()),
                     number(row.limit) + (row.missed() ? "  MISSED" : "")});
  }
  std::vector<std::size_t> widths(lines.front().size());
  for (const Cells& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
  }
  constexpr std::size_t textColumns = 2;  // these are aligned to the left, the numbers to the right
  for (const Cells& line : lines) {
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
      const std::string blanks(widths[i] - line[i].size(), ' ');
      out << (i < textColumns ? line[i] + blanks : blanks + line[i]) << "  ";
    }
    out << line.back() << '\n';
  }
}

void writeJson(const std::string& path, const Rows& rows) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Row& row : rows) {
    list.push_back({{"name", row.name},
                    {"unit", row.unit},
                    {"ours", row.ours},
                    {"rival", json(row.rival)},
                    {"ratio", json(row.ratio())},
                    {"limit", json(row.limit)}});
  }
  std::ofstream file(path);
  file << list.dump(2) << '\n';
  if (!file.flush()) throw std::runtime_error("Cannot write " + path);
}

}  // namespace voxa::bench
