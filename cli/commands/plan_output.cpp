#include "plan_output.h"

#include <map>
#include <tuple>

namespace voxa::cli {

namespace {

/// "1-37, 40" of numbers in their order.
std::string ranges(const std::vector<std::int32_t>& numbers) {
  std::string text;
  for (std::size_t first = 0; first < numbers.size();) {
    std::size_t last = first;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    text += (text.empty() ? "" : ", ") + std::to_string(numbers[first]);
    if (last > first) text += (last > first + 1 ? "-" : ", ") + std::to_string(numbers[last]);
    first = last + 1;
  }
  return text;
}

}  // namespace

std::vector<PlanRow> rowsOf(const std::vector<PlanItem>& items) {
  std::map<std::tuple<PlanItem::Action, ThingKind, PlanReason, bool>, std::vector<std::int32_t>> alike;
  for (const PlanItem& item : items) {
    const bool anew = item.creditAnew && item.reason != PlanReason::newController;
    alike[{item.action, item.kind, item.reason, anew}].push_back(item.number);
  }
  std::vector<PlanRow> rows;
  for (const auto& [key, numbers] : alike) {
    const auto& [action, kind, reason, anew] = key;
    rows.push_back(
        {voxa::textOf(action),
         numbers.size() == 1 ? nameOf(kind, numbers.front())
                             : std::string(kindName(kind)) + " " + ranges(numbers),
         std::string(voxa::textOf(reason)) + (anew ? "; erased first: its credit starts anew" : "")});
  }
  return rows;
}

std::string textOf(const LeftOut& row) {
  return row.row + ": " + row.reason;
}

}  // namespace voxa::cli
