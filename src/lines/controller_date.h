#pragma once

#include <string>

#include "platform/value.h"

namespace voxa {

/// Whether controllers that are told a date with the last two digits of its year take it for that date: they
/// take the year that brings it nearest to the day on which they are told.
[[nodiscard]] bool controllersRead(DateTime date, DateTime today);

/// The date as command lines have it, "ddmmyy". Raises `err::overflow` for one that they would take for
/// another.
[[nodiscard]] std::string controllerDate(DateTime date, DateTime today);

}  // namespace voxa
