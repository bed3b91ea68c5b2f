#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {
class Installation;
}

namespace voxa::cli {

/// A card held before a reader.
struct Presentation {
  std::int32_t reader = 0;
  std::int16_t station = 0;
  std::int16_t address = 0;
  std::int16_t position = 0;
  std::string code;  ///< 8 characters 0-9 and A-F
  DateTime moment;   ///< a minute
};

/// What people do at the doors from Monday 21 to Sunday 27 December 2026, by time: most come with their own
/// card to a door of their group, some to any door, some with an unknown card; at all hours, the minutes at
/// which programs begin and end more often than others. The same for the same rows.
[[nodiscard]] std::vector<Presentation> demoWeek(Installation& installation, std::size_t count);

}  // namespace voxa::cli
