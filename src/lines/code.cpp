#include "lines/code.h"

#include "platform/error.h"

namespace voxa {

std::string controllerCode(std::string_view code) {
  if (code.size() > codeLength) {
    throw Error(err::invalidArgument,
                "Invalid argument: the code " + std::string(code) + " has more than 8 characters");
  }
  std::string converted;
  for (const char c : code) {
    const bool upper = c >= 'A' && c <= 'F';
    if (c >= '0' && c <= '?') {
      converted += c;
    } else if (upper || (c >= 'a' && c <= 'f')) {
      converted += static_cast<char>(c - (upper ? 'A' : 'a') + ':');
    } else {
      throw Error(err::invalidArgument, "Invalid argument: the code " + std::string(code) +
                                            " has characters other than 0 to 9 and A to F");
    }
  }
  return converted;
}

std::string convertCardCode(std::string_view code) {
  const std::string converted = controllerCode(code);
  return std::string(codeLength - converted.size(), ' ') + converted;
}

std::string shownCode(std::string_view code) {
  std::string shown;
  for (const char c : code) shown += c >= ':' && c <= '?' ? static_cast<char>(c - ':' + 'A') : c;
  return shown;
}

}  // namespace voxa
