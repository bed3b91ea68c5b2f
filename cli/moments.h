#pragma once

#include <string>

#include "platform/value.h"
#include "site/moment.h"

namespace voxa::cli {

/// A day, or a day and time, as a person writes it: 24/12/2026, "24/12/2026 18:05", 2026-12-24. A Refusal for
/// any other text.
[[nodiscard]] DateTime writtenMoment(const std::string& text);

[[nodiscard]] site::Moment siteMoment(DateTime moment);

}  // namespace voxa::cli
