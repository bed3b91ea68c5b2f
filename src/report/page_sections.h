#pragma once

#include <string>

#include "report/page.h"

namespace voxa {

// What the page says of each figure: presentations in presentation_sections.cpp, how things stand in
// standing_sections.cpp.

[[nodiscard]] PageSection daySection(const Figures& figures);
[[nodiscard]] PageSection hourSection(const Figures& figures);
[[nodiscard]] PageSection doorSection(const Figures& figures);
[[nodiscard]] PageSection refusalSection(const Figures& figures);
[[nodiscard]] PageSection unknownSection(const Figures& figures);
[[nodiscard]] PageSection peopleSection(const Figures& figures);
[[nodiscard]] PageSection controllerSection(const Figures& figures);
[[nodiscard]] PageSection cardSection(const Figures& figures);

/// "3 cards expire within 30 days. 1 card has expired."
[[nodiscard]] std::string expiryText(const Figures& figures);

}  // namespace voxa
