#include "report/chart.h"

#include <algorithm>
#include <cmath>

#include "report/wording.h"

namespace voxa {

namespace {

constexpr double whole = 100;

/// The parts of a bar of which `full` presentations have the whole length.
std::vector<BarPart> partsOf(const Outcomes& outcomes, double full) {
  std::vector<BarPart> parts;
  double from = 0;
  for (std::size_t kind = 0; kind < Outcomes::kinds; ++kind) {
    if (outcomes.counts.at(kind) == 0) continue;
    const double size = whole * static_cast<double>(outcomes.counts.at(kind)) / full;
    parts.push_back({barKinds().at(kind).kind, from, size});
    from += size;
  }
  return parts;
}

template <typename All>
std::uint64_t most(const All& all) {
  std::uint64_t greatest = 0;
  for (const auto& each : all) greatest = std::max(greatest, each.outcomes.presentations());
  return greatest;
}

/// The distance of grid lines: 1, 2 or 5 and zeros, so that four lines or fewer reach the greatest value.
std::uint64_t stepFor(std::uint64_t greatest) {
  constexpr std::uint64_t lines = 4;
  for (std::uint64_t ten = 1;; ten *= 10) {
    for (const std::uint64_t factor : {1, 2, 5}) {
      if (ten * factor * lines >= greatest) return ten * factor;
    }
  }
}

}  // namespace

const std::vector<BarKind>& barKinds() {
  static const std::vector<BarKind> kinds = {{"granted", "granted"},
                                             {"time", "refused by time"},
                                             {"rights", "refused by rights"},
                                             {"unknown", "unknown card"}};
  return kinds;
}

std::vector<Bar> barsOf(const std::vector<Measured>& all) {
  const auto full = static_cast<double>(std::max<std::uint64_t>(most(all), 1));
  std::vector<Bar> bars;
  bars.reserve(all.size());
  for (const Measured& each : all) bars.push_back({each.name, each.text, partsOf(each.outcomes, full)});
  return bars;
}

ColumnChart columnsOf(std::string title, const std::vector<Marked>& all) {
  constexpr std::size_t marksWide = 15;  // as many as fit beside each other
  constexpr std::size_t narrower = 3;    // of so many one is shown on a telephone
  ColumnChart chart;
  chart.title = std::move(title);
  const std::uint64_t greatest = most(all);
  const std::uint64_t step = stepFor(greatest);
  const std::uint64_t top = step * std::max<std::uint64_t>((greatest + step - 1) / step, 1);
  for (std::uint64_t amount = top + step; amount != 0;) {
    amount -= step;
    chart.grid.push_back(
        {whole - whole * static_cast<double>(amount) / static_cast<double>(top), grouped(amount)});
  }
  const std::size_t stride = (all.size() + marksWide - 1) / marksWide;
  for (std::size_t i = 0; i < all.size(); ++i) {
    using Mark = ColumnChart::Mark;
    const Mark shown = i % (stride * narrower) == 0 ? Mark::always
                       : i % stride == 0            ? Mark::wide
                                                    : Mark::none;
    auto& column = chart.columns.emplace_back(
        ColumnChart::Column{all[i].name + ": " + outcomeText(all[i].outcomes), all[i].mark, shown, {}});
    column.parts = partsOf(all[i].outcomes, static_cast<double>(top));
    for (BarPart& part : column.parts) part.from = whole - part.from - part.size;
  }
  const auto busiest = std::max_element(all.begin(), all.end(), [](const Marked& one, const Marked& other) {
    return one.outcomes.presentations() < other.outcomes.presentations();
  });
  if (busiest != all.end() && greatest != 0)
    chart.text = "Most: " + busiest->name + ", " + outcomeText(busiest->outcomes) + ".";
  return chart;
}

}  // namespace voxa
