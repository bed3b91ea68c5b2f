#include "work/words.h"

#include <algorithm>
#include <charconv>
#include <iomanip>
#include <limits>
#include <sstream>
#include <vector>

#include "platform/clock.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"
#include "platform/transliteration.h"
#include "work/refusal.h"

namespace voxa {

namespace {

template <typename Number>
Number whole(const std::string& what, const std::string& text, Number least, Number greatest) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [read, failure] = std::from_chars(text.data(), end, number);
  if (text.empty() || failure == std::errc::invalid_argument || read != end) {
    throw Refusal(what + " is a whole number, not " + (text.empty() ? "nothing" : text));
  }
  if (failure == std::errc() && number >= least && number <= greatest) return number;
  throw Refusal(what + " is a number from " + std::to_string(least) + " to " + std::to_string(greatest) +
                ", not " + text);
}

constexpr std::size_t nameLength = 50;

/// "U+0141", of a character.
std::string numberOf(std::string_view character) {
  constexpr int digits = 4;
  std::ostringstream number;
  number << "U+" << std::hex << std::uppercase << std::setfill('0') << std::setw(digits)
         << static_cast<std::uint32_t>(firstCharacter(character));
  return number.str();
}

/// The first characters that files of code page 1252 cannot hold: "'Ł' (U+0141)".
std::string strangersOf(std::string_view text) {
  constexpr std::size_t most = 3;
  std::vector<std::string> strangers;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = behindCharacter(text, at);
    const std::string character(text.substr(at, end - at));
    at = end;
    if (isOfCp1252(character)) continue;
    const std::string shown = "'" + character + "' (" + numberOf(character) + ")";
    if (std::find(strangers.begin(), strangers.end(), shown) == strangers.end()) strangers.push_back(shown);
  }
  std::string all;
  for (std::size_t i = 0; i < std::min(most, strangers.size()); ++i)
    all += (i == 0 ? "" : ", ") + strangers[i];
  return all + (strangers.size() > most ? " and others" : "");
}

void requireStorable(const std::string& what, const std::string& text) {
  if (!isUtf8(text)) throw Refusal(what + " is text in UTF-8");
  if (isOfCp1252(text)) return;
  const auto written = inLatinLetters(text);
  const bool helps = written && isOfCp1252(*written) && !written->empty();
  throw Refusal(strangersOf(text) + " cannot be stored: " + what +
                " has the characters of Western European Windows, code page 1252" +
                (helps ? "; in Latin letters it is \"" + *written + "\"" : ""));
}

}  // namespace

bool isNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

std::int16_t number16(const std::string& what, const std::string& text) {
  using Limits = std::numeric_limits<std::int16_t>;
  return whole(what, text, Limits::min(), Limits::max());
}

std::int32_t number32(const std::string& what, const std::string& text) {
  using Limits = std::numeric_limits<std::int32_t>;
  return whole(what, text, Limits::min(), Limits::max());
}

std::int16_t numberWithin(const std::string& what, const std::string& text, std::int16_t least,
                          std::int16_t greatest) {
  return whole(what, text, least, greatest);
}

bool yesOrNo(const std::string& what, const std::string& text) {
  for (const char* yes : {"yes", "true", "1"}) {
    if (equalNoCase(text, yes)) return true;
  }
  for (const char* no : {"no", "false", "0"}) {
    if (equalNoCase(text, no)) return false;
  }
  throw Refusal(what + " is yes or no, not " + text);
}

std::string checkedText(const std::string& what, const std::string& text, std::size_t most) {
  if (hasControls(text)) throw Refusal(what + " is one line without control characters");
  if (lengthInCharacters(text) > most) {
    throw Refusal(what + " has up to " + std::to_string(most) + " characters, not " +
                  std::to_string(lengthInCharacters(text)));
  }
  requireStorable(what, text);
  return text;
}

std::string nameInLatinLetters(const std::string& name) {
  if (!isUtf8(name) || isOfCp1252(name)) return name;
  if (auto written = inLatinLetters(name)) return *written;
  throw Refusal("nothing on this computer writes \"" + name +
                "\" in Latin letters: it has no ICU library. Write the name in Latin letters yourself");
}

std::string nameWithRemark(const std::string& name, const std::string& remark) {
  if (remark.empty() || name.empty()) return name;
  return name + " (" + remark + ")";
}

std::string checkedName(const std::string& name) {
  if (name.empty()) throw Refusal("msgDBMandField", "(the name)");
  return checkedText("a name", name, nameLength);
}

std::string checkedPlaceName(const std::string& name) {
  if (name.find('\'') != std::string::npos) {
    throw Refusal(
        "the name of a station or reader has no apostrophe, since no transaction of its doors could be "
        "written into the journal: " +
        name);
  }
  return checkedName(name);
}

DateTime writtenMoment(const std::string& text, const Clock& clock) {
  const auto moment = parseDateTime(text, &clock);
  if (moment && moment->days >= 1) return *moment;  // a time alone is of day 0
  throw Refusal("'" + text + "' is no date: write 24/12/2026 or \"24/12/2026 18:05\"");
}

}  // namespace voxa
