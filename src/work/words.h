#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/value.h"

namespace voxa {

class Clock;

// What people write, in a command or a table, as values.

/// what: how a Refusal names the number ("the port"): for a text that is no whole number, a fraction
/// included, and for one outside the range.
[[nodiscard]] std::int16_t number16(const std::string& what, const std::string& text);
[[nodiscard]] std::int32_t number32(const std::string& what, const std::string& text);
/// Whether it is digits alone.
[[nodiscard]] bool isNumber(const std::string& text);
/// A number within bounds.
[[nodiscard]] std::int16_t numberWithin(const std::string& what, const std::string& text, std::int16_t least,
                                        std::int16_t greatest);

/// What says yes ("yes", "true", "1", in any case) or no.
[[nodiscard]] bool yesOrNo(const std::string& what, const std::string& text);

/// The text itself; a Refusal when it has control characters, characters that the database cannot hold, which
/// are named with what the text is in Latin letters, or more than so many. what: as the Refusal names it ("a
/// name").
[[nodiscard]] std::string checkedText(const std::string& what, const std::string& text, std::size_t most);
/// The same of a name, up to 50 characters, which is not empty.
[[nodiscard]] std::string checkedName(const std::string& name);
/// A name with Latin letters in place of those that the database cannot hold. A Refusal when the computer has
/// no ICU library.
[[nodiscard]] std::string nameInLatinLetters(const std::string& name);
/// Two people of one name are told apart by a remark: "Ada Byron (Sales)".
[[nodiscard]] std::string nameWithRemark(const std::string& name, const std::string& remark);
/// The same as checkedName for a station or reader; a Refusal for a name with an apostrophe too: the
/// journal's statements carry these names as they are, so that nothing of such a door could ever be read.
[[nodiscard]] std::string checkedPlaceName(const std::string& name);

/// A day, or a day and time, as a person writes it: 24/12/2026, "24/12/2026 18:05", 2026-12-24. A Refusal for
/// any other text. clock: tells the century of a year of two digits.
[[nodiscard]] DateTime writtenMoment(const std::string& text, const Clock& clock);

}  // namespace voxa
