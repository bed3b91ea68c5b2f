#pragma once

#include <string>
#include <vector>

#include "work/refusal.h"

namespace voxa {

/// Those of the known names that a person may have meant with a text that is none of them: a few letters are
/// other, missing or exchanged, or the text is a part of the name. In any case of the letters, the nearest
/// first, no more than `most`.
[[nodiscard]] std::vector<std::string> nearest(const std::string& typed,
                                               const std::vector<std::string>& known, std::size_t most = 3);

/// " (did you mean Employees?)", " (did you mean A, B or C?)", or "" when none is near.
[[nodiscard]] std::string didYouMean(const std::string& typed, const std::vector<std::string>& known);

/// What to raise when nothing has the name that a person typed. mnemonic: of the catalogue's text that says
/// so; known: all names there are.
[[nodiscard]] Refusal notFound(const std::string& mnemonic, const std::string& typed,
                               const std::vector<std::string>& known);

}  // namespace voxa
