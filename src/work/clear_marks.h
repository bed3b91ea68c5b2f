#pragma once

#include "work/carry_out.h"

namespace voxa {

/// Clears the marks of the rows that every controller holds, in a transaction that keeps others from changing
/// them meanwhile. Rows that are left out keep theirs, and so do the built-in programs 0, which are never
/// sent. What is still planned in the scope; of a full one, what the controllers do not hold.
WholePlan clearMarks(Installation& installation, const PlanScope& scope);

}  // namespace voxa
