#pragma once

#include "work/carry_out.h"

namespace voxa {

/// Clears the marks of the rows that every controller holds, in a transaction that keeps others from changing
/// them meanwhile. Rows that are left out keep theirs, and so do the built-in programs 0, which are never
/// sent. What is still planned in the scope, which is not a full one.
WholePlan clearMarks(Installation& installation, const PlanScope& scope);

/// Of the cards whose credit is on its way: it is at its end where the row does not mark it any more.
void endCredits(Installation& installation, const std::set<std::int32_t>& onTheirWay);

}  // namespace voxa
