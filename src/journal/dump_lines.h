#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace voxa {

class Context;

/// Hands over the lines of a transaction dump, in code page 1252, but for blank ones. number: counted from 1.
/// Of a line that is too long to be a transaction only the beginning is read (UndecodedLines::longestLine).
void eachDumpLine(Context& context, const std::string& file,
                  const std::function<void(std::size_t number, const std::string& line)>& take);

}  // namespace voxa
