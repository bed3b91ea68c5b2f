#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace voxa {

/// How many slots for holidays a controller has: slots 1 to 20, of a VRMD1 to 60.
[[nodiscard]] constexpr std::int16_t holidaySlots(std::string_view controllerType) {
  return controllerType == "VRMD1" ? 60 : 20;
}

/// A date on which the holiday programs are in force.
struct HolidayRecord {
  std::int16_t slot = 0;  ///< its place on the controllers
  DateTime date;
  bool eachYear = false;
};

/// "34", the slot in two digits (1 to 99), and "ddmmyy"; the year 00 means every year. Raises `err::overflow`
/// for a date that the controllers would take for another one `today` (controller_date.h), and for a year
/// that ends in 00.
[[nodiscard]] std::string holidayLine(const HolidayRecord& holiday, DateTime today);

/// The line that empties a slot: the date 000000.
[[nodiscard]] std::string clearHolidayLine(std::int16_t slot);

}  // namespace voxa
