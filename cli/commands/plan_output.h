#pragma once

#include <string>
#include <vector>

#include "work/carry_out.h"

namespace voxa::cli {

/// Things of a plan that have the same done for the same reason, as a person reads them.
struct PlanRow {
  std::string action;
  std::string what;    ///< "cards 1-37, 40"
  std::string reason;  ///< with what it brings with it
};
[[nodiscard]] std::vector<PlanRow> rowsOf(const std::vector<PlanItem>& items);

/// Prints a plan for a person, or as a JSON array.
void showPlan(const WholePlan& whole, bool json);

/// "daily program 7 (Night): ..." of rows that cannot be right.
[[nodiscard]] std::string textOf(const LeftOut& row);

}  // namespace voxa::cli
