#pragma once

#include <cstdint>
#include <string>

namespace voxa {

/// Where a reader finds the site code and the card number on a card.
struct BadgeFormatRecord {
  std::int16_t technology = 0;  ///< of the reader of a VRMD1, 0 to 10
  std::int16_t sitePosition = 0;
  std::int16_t siteSize = 0;
  std::int16_t cardPosition = 0;
  bool systemCard = false;  ///< the cards are the system's own
  std::string siteCode;     ///< up to 8 characters 0-9 and A-F
};

/// "04"; for a VRMD1 the reader's number and the three-digit code of its technology (nothing for an unknown
/// one); position and size of the site code and position of the card number (two digits each); "04" for the
/// system's own cards, "08" for others; the site code with zeros on the right up to 8 characters. Raises
/// `err::overflow` for a number that its field cannot hold.
[[nodiscard]] std::string badgeFormatLine(const BadgeFormatRecord& format, std::int16_t readerNumber,
                                          bool isVRMD1);

}  // namespace voxa
