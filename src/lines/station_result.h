#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/value.h"

namespace voxa {

/// What the driver wrote about a station-wide read into "RS" + three-digit station + ".OUT". The first line
/// has one status character for each controller address 1 to 16: "1" answered, "2" to "6" did not, "X" there
/// is none. Then comes one date line for each controller that answered: address from character 5 on (up to
/// four characters), hour at 9, minute at 11, day at 13, month at 15, year at 17, two digits each. A first
/// line that is too short leaves the other addresses unknown. A date line that cannot be read is ignored.
struct StationResult {
  static constexpr std::int16_t controllers = 16;

  [[nodiscard]] bool answered(std::int16_t address) const { return status(address) == '1'; }
  [[nodiscard]] bool failed(std::int16_t address) const {
    return status(address) >= '2' && status(address) <= '6';
  }
  [[nodiscard]] char status(std::int16_t address) const {
    return statuses[static_cast<std::size_t>(address - 1)];
  }
  /// The controller's clock; empty when the file has no date for the controller.
  [[nodiscard]] std::optional<DateTime> date(std::int16_t address) const {
    return dates[static_cast<std::size_t>(address - 1)];
  }

  static constexpr std::size_t dateLineSize = 18;  ///< so many characters of a date line are read

  /// Takes the file's first line, as the driver wrote it.
  void takeStatuses(std::string_view line);
  /// Takes a date line; for each address the first one counts. today: tells the century.
  void takeDate(std::string_view line, DateTime today);

  std::array<char, controllers> statuses{};  // 0 where the file says nothing
  std::array<std::optional<DateTime>, controllers> dates{};
};

}  // namespace voxa
