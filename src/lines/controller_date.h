#pragma once

#include <string>

#include "platform/value.h"

namespace voxa {

/// Whether controllers take the last two digits of a year for this date's year. They choose the year that
/// brings the date nearest to the day on which they are told.
[[nodiscard]] bool controllersRead(DateTime date, DateTime today);

/// The date as it stands in command lines, "ddmmyy". Raises `err::overflow` for a date that the controllers
/// would take for another one.
[[nodiscard]] std::string controllerDate(DateTime date, DateTime today);

}  // namespace voxa
