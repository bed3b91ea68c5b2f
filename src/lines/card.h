#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value.h"

namespace voxa {

/// The parts of a card's record. Each is sent on its own.
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

/// What a controller keeps of a card, in the order in which it is sent.
enum class CardField : std::uint8_t { code, weekly, door1, door2, pin, supervisor, lastDay, credit, lift };
/// Those of which a card has one each: all but the lift outputs, which are the last.
inline constexpr std::size_t cardFieldCount = 8;
/// The part of its record from which a field comes; a lift output comes from its group.
[[nodiscard]] CardPart partOf(CardField field);

/// A card's number and code, and what a controller must know of it.
struct CardRecord {
  std::int32_t number = 0;  ///< 1 to 9999 on the controllers
  std::string code;         ///< up to 8 characters 0-9, A-F or ":" to "?"; "" when the card has no code
  bool deleted = false;
  bool validated = true;
  std::int16_t pinCode = 0;
  bool supervisor = false;
  std::optional<DateTime> validationDate;  ///< none: unlimited
  std::int16_t credit = 0;
  CardParts parts;  ///< the parts to send
};

/// What a card's access group grants on one controller.
struct CardRights {
  std::int16_t weeklyProgram = 0;  ///< of family C; a controller can bind a card to only one program
  bool firstDoor = false;          ///< reader positions 1 and 3
  bool secondDoor = false;         ///< reader positions 2 and 4
};

/// Whether controllers are to have the card at all: not one that is deleted, or has no code.
[[nodiscard]] bool isForControllers(const CardRecord& card);

/// The value of a field, not of a lift output, as its line has it; raises what cardLines raises for it.
[[nodiscard]] std::string cardValue(CardField field, const CardRecord& card, const CardRights& rights,
                                    DateTime today);
/// The value of a lift output's line; raises `err::overflow` for one that has more than two digits.
[[nodiscard]] std::string liftValue(std::int16_t output);
/// The line that sets a field, one of those below. value: as cardValue or liftValue gives it. Raises
/// `err::overflow` for a number that is not 1 to 9999.
[[nodiscard]] std::string cardLine(CardField field, std::int32_t cardNum, std::string_view value,
                                   std::string_view controllerType);

/// The line that clears a card on the controllers: "09", the number in four digits, eight zeros.
[[nodiscard]] std::string clearCardLine(std::int32_t cardNum);
[[nodiscard]] std::vector<std::string> clearCardLines(const std::vector<std::int32_t>& cardNums);

/// The lines of one card for one controller, only those of `parts`:
///   09 code, 33 weekly program (two digits), 16 and 17 first and second door (0 or 1), 19 personal code
///   (four digits), 49 supervisor, 35 last valid day (ddmmyy, 000000 without), 36 credit (two digits), each
///   with the card number in four digits behind the command; then 37 with each lift output (two digits).
/// A VRMD1 controller needs the command, the record version 01, the number and the value, separated by ";",
/// in all but the lift lines. Raises `err::overflow` for a number that its field cannot hold and for a card
/// without a number, since the controller would take the line for another card's. Raises it, too, for a last
/// day that the controllers would take for another day `today` (controller_date.h).
[[nodiscard]] std::vector<std::string> cardLines(const CardRecord& card, const CardRights& rights,
                                                 const std::vector<std::int16_t>& liftOutputs,
                                                 std::string_view controllerType, DateTime today);

}  // namespace voxa
