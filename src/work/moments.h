#pragma once

#include <string>

#include "platform/value.h"

namespace voxa {

class Clock;

/// A stretch of time: from its first moment up to the first one behind it.
struct Span {
  DateTime from;
  DateTime behind;
};

/// The time that a person names:
///   24/12/2026, 2026-12-24       that day
///   today, yesterday             that day
///   monday ... sunday            the last day of that name; on a Monday "monday" is today. "mon" does, too
///   a day and 18:05              that minute: "24/12/2026 18:05", "yesterday 08:00"
///   -7d, -2w                     the day so many days or weeks ago
///   -12h, -30m                   the minute so many hours or minutes ago
/// Words in any case. A Refusal for any other text, and for what no date can be.
[[nodiscard]] Span writtenSpan(const std::string& text, const Clock& clock);

}  // namespace voxa
