#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

#include "site/contents.h"

/// The command lines that a controller understands:
///
///   31 id2 (start4 end4) x 2 or 4     daily program, times hhmm, 2400 the end of the day
///   32 or 42 number2 day2 x 7 holiday2   weekly program of family C or E
///   34 slot2 ddmmyy                   holiday; year 00 every year, 000000 erases the slot
///   04 position2 length2 position2 type2 code8   badge format; on a VRMD1 reader number and three-digit
///                                     technology may stand between the 04 and the rest
///   09 N code8                        card code; 00000000 erases the card
///   33 N weekly2    16 N 0/1 (door 1)    17 N 0/1 (door 2)    19 N pin4    49 N (supervisor) or 49 N 0 (not)
///   35 N ddmmyy (000000 none)    36 N credit2 (00 none)    37 N output2 (lift)
///   DEL code                          line speed 0 to 3: 4800, 9600, 19200, 38400
///
/// N is a card number of four digits. A VRMD1 takes the card lines as code;01;N;rest, with 1 or 0 behind a
/// 49. It takes a lift line in either form.
namespace site {

/// Why a line means nothing to a controller.
class Undecodable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct EraseHoliday {
  int slot = 0;
};
struct CardCode {
  int number = 0;
  std::string code;  ///< as Card::code
};
struct EraseCard {
  int number = 0;
};
enum class CardField { weekly, door1, door2, supervisor, validUntil, credit };
struct CardSetting {
  int number = 0;
  CardField field = CardField::weekly;
  std::optional<int> value;  ///< a day is written yyyymmdd
};
struct CardPin {
  int number = 0;
  std::string pin;
};
struct CardLift {
  int number = 0;
  int output = 0;
};
struct SpeedChange {
  int speed = 0;
};

using Command = std::variant<DailyProgram, WeeklyProgram, Holiday, EraseHoliday, BadgeFormat, CardCode,
                             EraseCard, CardSetting, CardPin, CardLift, SpeedChange>;

/// What the line means to a controller of that type. today: tells the century of a date. Raises Undecodable
/// with the reason.
[[nodiscard]] Command decode(std::string_view line, std::string_view controllerType, const Date& today);

/// A card's code in the one form in which codes are kept and compared. It has eight characters: zeros for
/// blanks or missing characters on the left, and : to ? for A to F. None when the text is no such code.
[[nodiscard]] std::optional<std::string> normalCode(std::string_view code);

/// A day in the form of CardSetting, and back.
[[nodiscard]] int packed(const Date& date);
[[nodiscard]] Date unpacked(int day);

}  // namespace site
