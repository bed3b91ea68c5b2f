#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "lines/card.h"

namespace voxa {

/// What one command line sets on a controller, and the next such line replaces.
enum class ThingKind : std::uint8_t { card, daily, weeklyC, weeklyE, holiday, badgeFormat };

/// A command line, understood.
struct SentLine {
  enum class Fit : std::uint8_t {
    certain,       ///< a controller of that type that acknowledges it has taken it
    doubtful,      ///< it names its thing, but its form or a value in it is not one that the controller takes
    anyValue,      ///< the same, and its value has characters that no value has
    wholeKind,     ///< of a known kind, but not of its width: which thing it sets cannot be said
    lineSpeed,     ///< changes the speed of the line, and nothing that decides about doors
    notUnderstood  ///< of no known kind
  };
  Fit fit = Fit::notUnderstood;
  ThingKind kind = ThingKind::card;
  std::int32_t number = 0;  ///< of the card, program, holiday; of a badge format its reader, 0 for all
  CardField field = CardField::code;  ///< of a card
  std::int16_t output = 0;            ///< of a lift line
  /// What it sets, in one form for each value: a card's code as eight characters with zeros on the left; two
  /// digits for weekly program and credit, four for the personal code, 0 or 1 for doors, supervisor mark and
  /// lift output, ddmmyy for days; all behind the number for programs; "" where it erases.
  std::string value;
};

/// What a line means to a controller of that type, "QSX3" or "VRMD1"; "" for one whose type is not known. The
/// forms are those of src/lines.
[[nodiscard]] SentLine sentLine(std::string_view line, std::string_view controllerType);

}  // namespace voxa
