#pragma once

namespace voxa {
class Installation;
}

namespace voxa::cli {

/// Adds to the demonstration's installation five access groups with 250 cards, the holidays of a year's end
/// and a badge format. Two blocks of cards are on the controllers afterwards, the rest is marked to be sent.
void fillDemoCards(Installation& installation);

/// The badge format that it adds.
constexpr const char* demoBadgeFormat = "Site cards";

}  // namespace voxa::cli
