#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {

class Installation;

/// The numbers of a badge format, in the order in which they are listed.
struct BadgeNumber {
  const char* called;  ///< "the technology"
  const char* column;
  std::int16_t greatest;  ///< from 0
};
constexpr std::size_t badgeNumberCount = 5;
constexpr std::array<BadgeNumber, badgeNumberCount> badgeNumbers = {
    {{"the technology", "Techno", 10},
     {"the position of the card number", "Pos_Card", 32},
     {"the length of the card number", "Size_Card", 64},
     {"the position of the site code", "Pos_Site", 99},
     {"the length of the site code", "Size_Site", 64}}};

/// A badge format as a person writes it. What is not given stays as it is.
struct BadgeFormatTexts {
  std::optional<std::string> name = {};
  std::optional<std::string> site = {};  ///< up to 8 hexadecimal digits
  std::array<std::optional<std::string>, badgeNumberCount> numbers = {};
  std::optional<bool> systemCard = {};  ///< whether the cards are the system's own
};

struct BadgeFormatRow {
  std::int32_t id = 0;
  std::string name;
  std::array<Value, badgeNumberCount> numbers;
  Value site;
  bool systemCard = false;
  bool toSend = false;
};

// What cannot be as it is written, and an installation without badge formats, is a Refusal; nothing is
// changed then.

/// Makes the table with the default format. A Refusal when there is one already; what fails is raised.
void createBadgeFormats(Installation& installation);
/// Adds a format, marked to be sent; returns its number.
std::int16_t addBadgeFormat(Installation& installation, const BadgeFormatTexts& texts);
/// Changes the format of that number or name; what readers are sent marks it.
void changeBadgeFormat(Installation& installation, const std::string& numberOrName,
                       const BadgeFormatTexts& texts);
/// Puts the default format back to what it was at first, and marks it.
void restoreDefaultBadgeFormat(Installation& installation);
/// Deletes a format; the default one, 0, stays. No row says which reader works with which: those that were
/// sent it keep it.
void deleteBadgeFormat(Installation& installation, const std::string& numberOrName);
[[nodiscard]] BadgeFormatRow findBadgeFormat(Installation& installation, const std::string& numberOrName);
/// By number; none when the installation has no table of them.
[[nodiscard]] std::vector<BadgeFormatRow> listBadgeFormats(Installation& installation);

}  // namespace voxa
