#pragma once

#include <functional>

#include "engines/dao/object.h"

namespace voxa::dao {

/// Gives the values of each row from the current one on to `visit`, until it wants no more. Rows come in
/// blocks: one call for each row and field would take most of the time.
void visitBlocks(const Object& rows, const std::function<bool(const Value* row)>& visit);

}  // namespace voxa::dao
