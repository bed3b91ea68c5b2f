#pragma once

#include <string_view>

#include "lines/card.h"

namespace voxa {

class Recordset;

/// Name of a part's FlagD column in "Cardholders".
[[nodiscard]] std::string_view flagColumn(std::size_t part);

/// What a row with all columns of "Cardholders" says.
[[nodiscard]] CardRecord cardRecord(const Recordset& row);

}  // namespace voxa
