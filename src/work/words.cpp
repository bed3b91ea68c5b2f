#include "work/words.h"

#include <charconv>
#include <limits>

#include "platform/clock.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"
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
  try {
    (void)toCp1252(text);
  } catch (const Error& failure) {
    throw Refusal(failure.description());
  }
  return text;
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
