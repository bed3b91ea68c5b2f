#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "engines/language/format.h"
#include "engines/sqlite/function_table.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa {

std::size_t offsetOf(std::string_view text, std::int64_t characters) {
  std::size_t at = 0;
  for (; characters > 0 && at < text.size(); --characters) at = behindCharacter(text, at);
  return at;
}

std::int64_t countOf(sqlite3_value* value, std::int64_t least) {
  const std::int64_t number = Value(sqlite3_value_double(value)).toInt32();
  if (number < least) throw Error(err::invalidArgument, "Invalid argument: a position or length in a text");
  return number;
}

namespace {

void left(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string_view text = textOf(arguments[0]);
  returnText(context, text.substr(0, offsetOf(text, countOf(arguments[1], 0))));
}

void right(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string_view text = textOf(arguments[0]);
  const auto length = static_cast<std::int64_t>(lengthInCharacters(text));
  returnText(context, text.substr(offsetOf(text, length - countOf(arguments[1], 0))));
}

void mid(sqlite3_context* context, sqlite3_value** arguments, int number) {
  std::string_view text = textOf(arguments[0]);
  text = text.substr(offsetOf(text, countOf(arguments[1], 1) - 1));
  if (number > 2) text = text.substr(0, offsetOf(text, countOf(arguments[2], 0)));
  returnText(context, text);
}

/// So many times the first character of a text, or the character that a number is the code of.
void repeated(sqlite3_context* context, sqlite3_value** arguments, int) {
  constexpr std::int64_t most = 1'000'000;
  std::string text(textOf(arguments[1]));
  if (sqlite3_value_type(arguments[1]) != SQLITE_TEXT)
    text = fromCp1252(std::string(1, static_cast<char>(valueOf(arguments[1]).toInt32() & 0xff)));
  const std::int64_t times = countOf(arguments[0], 0);
  if (text.empty() || times > most)
    throw Error(err::invalidArgument, "Invalid argument: a character is repeated 0 to 1,000,000 times");
  std::string out;
  for (std::int64_t i = 0; i < times; ++i) out.append(text, 0, behindCharacter(text, 0));
  returnText(context, out);
}

/// A number as text, with a blank in the place of the sign of a positive one.
void str(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string text = valueOf(arguments[0]).toText();
  returnText(context, text.starts_with('-') ? text : ' ' + text);
}

/// A whole number in hexadecimal or octal; a negative one by its 32 bits.
template <int base>
void digits(sqlite3_context* context, sqlite3_value** arguments, int) {
  char buffer[16];
  const auto bits = static_cast<std::uint32_t>(Value(sqlite3_value_double(arguments[0])).toInt32());
  const auto end = std::to_chars(std::begin(buffer), std::end(buffer), bits, base).ptr;
  returnText(context, toUpper(std::string_view(buffer, static_cast<std::size_t>(end - buffer))));
}

void lower(sqlite3_context* context, sqlite3_value** arguments, int) {
  returnText(context, toLower(textOf(arguments[0])));
}

void upper(sqlite3_context* context, sqlite3_value** arguments, int) {
  returnText(context, toUpper(textOf(arguments[0])));
}

/// A character from its number in code page 1252, and back.
void chr(sqlite3_context* context, sqlite3_value** arguments, int) {
  const char byte =
      static_cast<char>(Value(convertForField(valueOf(arguments[0]), DataType::Byte, 0)).toInt16());
  returnText(context, fromCp1252({&byte, 1}));
}

/// The first character of a text.
std::string_view firstOf(sqlite3_value* value) {
  const std::string_view text = textOf(value);
  if (text.empty())
    throw Error(err::invalidArgument, "Invalid argument: an empty text has no first character");
  return text.substr(0, behindCharacter(text, 0));
}

void asc(sqlite3_context* context, sqlite3_value** arguments, int) {
  sqlite3_result_int(context, static_cast<unsigned char>(toCp1252(firstOf(arguments[0]))[0]));
}

void reverse(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string_view text = textOf(arguments[0]);
  std::string out(text.size(), ' ');
  for (std::size_t at = 0, next = 0; at < text.size(); at = next) {
    next = behindCharacter(text, at);
    out.replace(text.size() - next, next - at, text.substr(at, next - at));
  }
  returnText(context, out);
}

/// vx_strconv(text, how): 1 capital letters, 2 small ones, 3 a capital at the beginning of each word.
void convertCase(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string_view text = textOf(arguments[0]);
  const std::int64_t how = countOf(arguments[1], 1);
  if (how > 3)
    throw Error(err::invalidArgument, "Invalid argument: letters become 1 large, 2 small, 3 large in words");
  if (how == 1) return returnText(context, toUpper(text));
  std::string out = toLower(text);
  if (how == 3) {
    constexpr std::string_view blanks(" \t\n\v\f\r\0", 7);
    const std::string small = std::exchange(out, {});
    bool begins = true;
    for (std::size_t at = 0, next = 0; at < small.size(); at = next) {
      next = behindCharacter(small, at);
      const std::string_view character = std::string_view(small).substr(at, next - at);
      out += begins ? toUpper(character) : std::string(character);
      begins = blanks.find(character) != std::string_view::npos;
    }
  }
  returnText(context, out);
}

/// A character from its number in Unicode, and back.
void characterByNumber(sqlite3_context* context, sqlite3_value** arguments, int) {
  std::int32_t number = Value(sqlite3_value_double(arguments[0])).toInt32();
  if (number < 0) number += 0x10000;  // one of 16 bits with a sign
  if (number < 0 || number > 0xffff || (number >= 0xd800 && number <= 0xdfff))
    throw Error(err::invalidArgument, "Invalid argument: no character has this number");
  returnText(context, characterOf(static_cast<char32_t>(number)));
}

void numberOfCharacter(sqlite3_context* context, sqlite3_value** arguments, int) {
  sqlite3_result_int(context, static_cast<int>(firstCharacter(firstOf(arguments[0]))));
}

/// Whether the class at the start of the pattern, [a-z] or [!a-z], contains the character. Moves the pattern
/// behind the class.
bool inClass(std::string_view& pattern, std::string_view character) {
  const std::size_t close = pattern.find(']', 1);
  if (close == std::string_view::npos) throw Error(err::invalidPattern, "Invalid pattern: [ is not closed");
  std::string_view set = pattern.substr(1, close - 1);
  pattern.remove_prefix(close + 1);
  const bool negated = set.size() > 1 && set.front() == '!';
  if (negated) set.remove_prefix(1);
  bool found = false;
  for (std::size_t at = 0; at < set.size();) {
    std::size_t next = behindCharacter(set, at);
    const std::string_view first = set.substr(at, next - at);
    std::string_view last = first;
    if (next + 1 < set.size() && set[next] == '-') {
      at = next + 1;
      next = behindCharacter(set, at);
      last = set.substr(at, next - at);
    }
    if (first == last) {
      found = found || first == character;
    } else {
      if (compareNoCase(first, last) > 0)
        throw Error(err::invalidPattern, "Invalid pattern: a range such as [a-z] begins with its lower end");
      found = found || (compareNoCase(first, character) <= 0 && compareNoCase(character, last) <= 0);
    }
    at = next;
  }
  return found != negated;
}

bool matches(std::string_view text, std::string_view pattern) {
  // Where to continue after a mismatch: behind the last *, with one more character of the text passed over.
  std::optional<std::pair<std::string_view, std::string_view>> retry;
  for (;;) {
    bool matched = false;
    if (!pattern.empty() && pattern.front() == '*') {
      pattern.remove_prefix(1);
      retry.emplace(text, pattern);
      continue;
    }
    if (pattern.starts_with("[]")) {  // no character
      pattern.remove_prefix(2);
      continue;
    }
    if (text.empty() && pattern.empty()) return true;
    if (!text.empty() && !pattern.empty()) {
      const std::string_view character = text.substr(0, behindCharacter(text, 0));
      if (pattern.front() == '[') {
        matched = inClass(pattern, character);
      } else {
        const std::string_view wanted = pattern.substr(0, behindCharacter(pattern, 0));
        matched =
            wanted == "?" || (wanted == "#" ? character >= "0" && character <= "9" : wanted == character);
        pattern.remove_prefix(wanted.size());
      }
      text.remove_prefix(character.size());
    }
    if (matched) continue;
    if (!retry || retry->first.empty()) return false;
    retry->first.remove_prefix(behindCharacter(retry->first, 0));
    text = retry->first;
    pattern = retry->second;
  }
}

void like(sqlite3_context* context, sqlite3_value** arguments, int) {
  sqlite3_result_int(context, matches(toLower(textOf(arguments[0])), toLower(textOf(arguments[1]))) ? 1 : 0);
}

/// vx_format(value, type, pattern, firstDay, firstWeek)
void format(sqlite3_context* context, sqlite3_value** arguments, int) {
  if (sqlite3_value_type(arguments[2]) == SQLITE_NULL) return;
  const auto type = static_cast<DataType>(sqlite3_value_int(arguments[1]));
  returnText(context, dialect::format(asType(valueOf(arguments[0]), type), textOf(arguments[2]),
                                      weeksOf(arguments[3], arguments[4]), clockOf(context)));
}

/// Two texts in one. Null counts as no text; Null when both are.
void join(sqlite3_context* context, sqlite3_value** arguments, int) {
  const auto isNull = [&](int i) { return sqlite3_value_type(arguments[i]) == SQLITE_NULL; };
  if (isNull(0) && isNull(1)) return;
  returnText(context, std::string(textOf(arguments[0])).append(textOf(arguments[1])));
}

constexpr SqlFunction functions[] = {{"vx_left", 2, false, left},
                                     {"vx_right", 2, false, right},
                                     {"vx_mid", 2, false, mid},
                                     {"vx_mid", 3, false, mid},
                                     {"vx_string", 2, false, repeated},
                                     {"vx_str", 1, false, str},
                                     {"vx_hex", 1, false, digits<16>},
                                     {"vx_oct", 1, false, digits<8>},
                                     {"vx_lower", 1, false, lower},
                                     {"vx_upper", 1, false, upper},
                                     {"vx_chr", 1, false, chr},
                                     {"vx_asc", 1, false, asc},
                                     {"vx_strreverse", 1, false, reverse},
                                     {"vx_strconv", 2, false, convertCase},
                                     {"vx_chrw", 1, false, characterByNumber},
                                     {"vx_ascw", 1, false, numberOfCharacter},
                                     {"vx_like", 2, false, like},
                                     {"vx_format", 5, true, format},
                                     {"vx_join", 2, true, join}};

}  // namespace

std::span<const SqlFunction> textFunctions() {
  return functions;
}

}  // namespace voxa
