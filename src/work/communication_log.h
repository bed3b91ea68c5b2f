#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace voxa {

class Installation;

/// Hands over the lines of the communication log, every driver call and its result, in their order: all, or
/// so many at the end. None when there is no log yet. The lines of commands have personal codes in them.
void eachLogLine(Installation& installation, std::optional<std::size_t> last,
                 const std::function<void(const std::string&)>& take);

}  // namespace voxa
