#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>

#include "engines/language/format.h"
#include "engines/sqlite/function_table.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// Position behind the character at `at`.
std::size_t behind(std::string_view text, std::size_t at) {
  ++at;
  while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U) ++at;
  return at;
}

/// Position of the character with that number, counted from 0; the size of the text when it has no such
/// character.
std::size_t offset(std::string_view text, std::int64_t characters) {
  std::size_t at = 0;
  for (; characters > 0 && at < text.size(); --characters) at = behind(text, at);
  return at;
}

std::int64_t count(sqlite3_value* value, std::int64_t least) {
  const std::int64_t number = Value(sqlite3_value_double(value)).toInt32();
  if (number < least) throw Error(err::invalidArgument, "Invalid argument: a position or length in a text");
  return number;
}

void left(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string_view text = textOf(arguments[0]);
  returnText(context, text.substr(0, offset(text, count(arguments[1], 0))));
}

void right(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string_view text = textOf(arguments[0]);
  const auto length = static_cast<std::int64_t>(lengthInCharacters(text));
  returnText(context, text.substr(offset(text, length - count(arguments[1], 0))));
}

void mid(sqlite3_context* context, sqlite3_value** arguments, int number) {
  std::string_view text = textOf(arguments[0]);
  text = text.substr(offset(text, count(arguments[1], 1) - 1));
  if (number > 2) text = text.substr(0, offset(text, count(arguments[2], 0)));
  returnText(context, text);
}

/// vx_instr(start, text, wanted): number of the character where `wanted` begins; 0 when it does not occur.
void instr(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string text = toLower(textOf(arguments[1]));
  const std::size_t start = offset(text, count(arguments[0], 1) - 1);
  const std::size_t found = start < text.size() ? text.find(toLower(textOf(arguments[2])), start) : text.npos;
  const std::size_t characters =
      found == std::string::npos ? 0 : lengthInCharacters(std::string_view(text).substr(0, found)) + 1;
  sqlite3_result_int64(context, static_cast<std::int64_t>(characters));
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

void asc(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string_view text = textOf(arguments[0]);
  if (text.empty())
    throw Error(err::invalidArgument, "Invalid argument: an empty text has no first character");
  sqlite3_result_int(context, static_cast<unsigned char>(toCp1252(text.substr(0, behind(text, 0)))[0]));
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
    std::size_t next = behind(set, at);
    const std::string_view first = set.substr(at, next - at);
    std::string_view last = first;
    if (next + 1 < set.size() && set[next] == '-') {
      at = next + 1;
      next = behind(set, at);
      last = set.substr(at, next - at);
    }
    // UTF-8 bytes have the same order as their characters.
    found = found || (first <= character && character <= last);
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
      const std::string_view character = text.substr(0, behind(text, 0));
      if (pattern.front() == '[') {
        matched = inClass(pattern, character);
      } else {
        const std::string_view wanted = pattern.substr(0, behind(pattern, 0));
        matched =
            wanted == "?" || (wanted == "#" ? character >= "0" && character <= "9" : wanted == character);
        pattern.remove_prefix(wanted.size());
      }
      text.remove_prefix(character.size());
    }
    if (matched) continue;
    if (!retry || retry->first.empty()) return false;
    retry->first.remove_prefix(behind(retry->first, 0));
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
  const dialect::Weeks weeks{static_cast<int>(count(arguments[3], 0)),
                             static_cast<int>(count(arguments[4], 0))};
  if (weeks.firstDay > 7 || weeks.firstWeek > 3)
    throw Error(err::invalidArgument,
                "Invalid argument: a week begins with day 1 to 7, the first of a year is 1, 2 or 3");
  const Value value = asType(valueOf(arguments[0]), type);
  returnText(context,
             dialect::format(value, textOf(arguments[2]),
                             {std::max(weeks.firstDay, 1), std::max(weeks.firstWeek, 1)}, clockOf(context)));
}

/// Two texts in one. Null counts as no text; Null when both are.
void join(sqlite3_context* context, sqlite3_value** arguments, int) {
  const auto isNull = [&](int i) { return sqlite3_value_type(arguments[i]) == SQLITE_NULL; };
  if (isNull(0) && isNull(1)) return;
  returnText(context, std::string(textOf(arguments[0])).append(textOf(arguments[1])));
}

constexpr SqlFunction functions[] = {
    {"vx_left", 2, false, left},   {"vx_right", 2, false, right},  {"vx_mid", 2, false, mid},
    {"vx_mid", 3, false, mid},     {"vx_instr", 3, false, instr},  {"vx_lower", 1, false, lower},
    {"vx_upper", 1, false, upper}, {"vx_chr", 1, false, chr},      {"vx_asc", 1, false, asc},
    {"vx_like", 2, false, like},   {"vx_format", 5, true, format}, {"vx_join", 2, true, join}};

}  // namespace

std::span<const SqlFunction> textFunctions() {
  return functions;
}

}  // namespace voxa
