#include "lines/badge_format.h"

#include <array>
#include <string_view>

#include "lines/code.h"
#include "lines/field.h"

namespace voxa {

namespace {

constexpr std::array<std::string_view, 11> technologyCodes = {"800", "000", "001", "008", "009", "108",
                                                              "508", "300", "200", "201", "600"};

std::string technologyPart(std::int16_t technology, std::int16_t readerNumber) {
  if (technology < 0 || static_cast<std::size_t>(technology) >= technologyCodes.size()) return "";
  return std::to_string(readerNumber).append(technologyCodes[static_cast<std::size_t>(technology)]);
}

}  // namespace

std::string badgeFormatLine(const BadgeFormatRecord& format, std::int16_t readerNumber, bool isVRMD1) {
  std::string line = "04";
  if (isVRMD1) line += technologyPart(format.technology, readerNumber);
  line += numberField(format.sitePosition, 0, 2, "Pos_Site");
  line += numberField(format.siteSize, 0, 2, "Size_Site");
  line += numberField(format.cardPosition, 0, 2, "Pos_Card");
  line += format.systemCard ? "04" : "08";
  std::string site = controllerCode(format.siteCode);
  site.resize(codeLength, '0');
  return line + site;
}

}  // namespace voxa
