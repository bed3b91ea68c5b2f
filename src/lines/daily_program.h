#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {

/// "31", the number in two digits (1 to 99), and the start and end of each interval as "hhmm". 23:59 stands
/// for the end of the day, which the controllers call 2400. bounds: start and end of two intervals, or of
/// four for controllers that work with four.
[[nodiscard]] std::string dailyProgramLine(std::int16_t number, const std::vector<DateTime>& bounds);

}  // namespace voxa
