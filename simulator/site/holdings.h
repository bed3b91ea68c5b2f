#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "site/decoder.h"

/// What the command lines have put into a controller.
namespace site {

class Storage;

/// Stores what a command says. Raises Undecodable for a setting of a card that the controller does not hold.
/// A SpeedChange is not stored here: it belongs to the controller itself.
void hold(Storage& storage, std::int64_t controller, const Command& command);

/// Programs, holidays, cards and badge formats, in the order of their numbers.
void readHoldings(Storage& storage, std::int64_t controller, Snapshot& into);

/// The card of that code, or of that number, without its lifts. Of several with one code it is the one with
/// the lowest number.
[[nodiscard]] std::optional<Card> cardByCode(Storage& storage, std::int64_t controller,
                                             const std::string& code);
[[nodiscard]] std::optional<Card> cardByNumber(Storage& storage, std::int64_t controller, int number);

[[nodiscard]] std::optional<WeeklyProgram> weeklyProgram(Storage& storage, std::int64_t controller,
                                                         char family, int number);
[[nodiscard]] std::optional<DailyProgram> dailyProgram(Storage& storage, std::int64_t controller, int number);
[[nodiscard]] bool isHoliday(Storage& storage, std::int64_t controller, const Date& date);

/// Erases all of it.
void eraseHoldings(Storage& storage, std::int64_t controller);

}  // namespace site
