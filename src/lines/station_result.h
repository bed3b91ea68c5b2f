#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/value.h"

namespace voxa {

/// What the driver wrote about a station-wide read into "RS" + three-digit station + ".OUT": a first line of
/// one status character per controller address 1 to 16 ("1" answered, "2" to "6" did not, "X" none there),
/// then one date line per answering controller: address from character 5 (up to four characters), hour at 9,
/// minute at 11, day at 13, month at 15, year at 17, two digits each. A short line leaves the rest unknown, a
/// date line that cannot be read is none.
struct StationResult {
  static constexpr std::int16_t controllers = 16;

  [[nodiscard]] bool answered(std::int16_t address) const { return status(address) == '1'; }
  [[nodiscard]] bool failed(std::int16_t address) const {
    return status(address) >= '2' && status(address) <= '6';
  }
  [[nodiscard]] char status(std::int16_t address) const {
    return statuses[static_cast<std::size_t>(address - 1)];
  }
  /// The controller's clock; empty when the file has no date for it.
  [[nodiscard]] std::optional<DateTime> date(std::int16_t address) const {
    return dates[static_cast<std::size_t>(address - 1)];
  }

  static constexpr std::size_t dateLineSize = 18;  ///< characters that are read of a date line

  /// The file's first line, in its own characters.
  void takeStatuses(std::string_view line);
  /// One of the others, of which the first of an address counts. today: tells the century.
  void takeDate(std::string_view line, DateTime today);

  std::array<char, controllers> statuses{};  // a NUL where the file says nothing
  std::array<std::optional<DateTime>, controllers> dates{};
};

}  // namespace voxa
