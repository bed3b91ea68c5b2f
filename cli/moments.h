#pragma once

#include <string>

#include "platform/clock.h"
#include "platform/value.h"
#include "site/moment.h"

namespace voxa::cli {

/// A day, or a day and time, as a person writes it: 24/12/2026, "24/12/2026 18:05", 2026-12-24. A Refusal for
/// any other text. clock: tells the century of a year of two digits.
[[nodiscard]] DateTime writtenMoment(const std::string& text, const Clock& clock);

[[nodiscard]] site::Moment siteMoment(DateTime moment);

}  // namespace voxa::cli
