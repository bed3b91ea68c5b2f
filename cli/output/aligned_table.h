#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "output/table_output.h"
#include "output/terminal_filter.h"

namespace voxa::cli {

/// Prints a list for a person, as printList has it.
void printAligned(std::ostream& out, const std::vector<std::string>& columns, const ListRows& rows);

/// How a terminal shows a cell: things to do and things gone wrong stand out.
[[nodiscard]] Style styleOf(const std::string& column, const Cell& cell);

}  // namespace voxa::cli
