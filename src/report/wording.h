#pragma once

#include <cstdint>
#include <string>

#include "platform/value.h"

namespace voxa {

struct Figures;
struct Outcomes;

// Values as a person reads them in a report.

[[nodiscard]] std::string grouped(std::uint64_t number);  ///< "4,120"
/// "1 door", "4,120 doors".
[[nodiscard]] std::string counted(std::uint64_t number, const std::string& thing);
/// "96 %"; never "100 %" or "0 %" of what is not all or nothing.
[[nodiscard]] std::string share(std::uint64_t part, std::uint64_t whole);
/// "312 presentations, 12 refused".
[[nodiscard]] std::string outcomeText(const Outcomes& outcomes);

[[nodiscard]] std::string dayText(int day);             ///< "Tuesday 24 November 2026"
[[nodiscard]] std::string shortDayText(int day);        ///< "24 Nov"
[[nodiscard]] std::string momentText(DateTime moment);  ///< "24/11/2026 18:05"
/// "from 1 to 30 November 2026", with times where it does not begin or end with a day.
[[nodiscard]] std::string timeText(const Figures& figures);

/// A name for a table or bar: without characters that turn the direction of the text around them.
[[nodiscard]] std::string shownName(const std::string& name);
/// The same of a door, whose place may have no reader.
[[nodiscard]] std::string shownDoor(const std::string& name);
/// A name within a sentence, which goes on in its own direction behind it.
[[nodiscard]] std::string within(const std::string& shown);

}  // namespace voxa
