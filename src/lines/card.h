#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value.h"

namespace voxa {

/// The parts of a card's record that are sent separately.
enum CardPart : std::uint8_t {
  cardCodePart,
  accessGroupPart,
  validatedPart,
  pinCodePart,
  supervisorPart,
  validationDatePart,
  creditPart
};
constexpr std::size_t cardPartCount = 7;
using CardParts = std::bitset<cardPartCount>;

/// A card's place and code, and what a controller is to know of it.
struct CardRecord {
  std::int32_t number = 0;  ///< 1 to 9999 on the controllers
  std::string code;         ///< up to 8 characters 0-9, A-F or ":" to "?"; "" for a card that has none
  bool deleted = false;
  bool validated = true;
  std::int16_t pinCode = 0;
  bool supervisor = false;
  std::optional<DateTime> validationDate;  ///< none: unlimited
  std::int16_t credit = 0;
  CardParts parts;  ///< what is to be sent
};

/// What a card's access group grants on one controller.
struct CardRights {
  std::int16_t weeklyProgram = 0;  ///< of family C; a controller binds a card to one program only
  bool firstDoor = false;          ///< reader positions 1 and 3
  bool secondDoor = false;         ///< reader positions 2 and 4
};

/// "09", the number in four digits and eight zeros: the line that clears a card in the controllers.
[[nodiscard]] std::string clearCardLine(std::int32_t cardNum);

/// The lines of one card for one controller, those of `parts` only:
///   09 code, 33 weekly program (two digits), 16 and 17 first and second door (0 or 1), 19 personal code
///   (four digits), 49 supervisor, 35 last valid day (ddmmyy, 000000 without), 36 credit (two digits), each
///   with the card number in four digits behind the command; then 37 with each lift output (two digits).
/// A VRMD1 controller wants the command, the record version 01, the number and the value separated by ";",
/// the lift lines excepted. A number that its width cannot hold, and a card without a number, raise
/// `err::overflow`: the line would be read as another card's; so does a last day that the controllers would
/// take for another one `today` (controller_date.h).
[[nodiscard]] std::vector<std::string> cardLines(const CardRecord& card, const CardRights& rights,
                                                 const std::vector<std::int16_t>& liftOutputs,
                                                 std::string_view controllerType, DateTime today);

}  // namespace voxa
