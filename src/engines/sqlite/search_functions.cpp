#include <algorithm>
#include <string>

#include "engines/sqlite/function_table.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// How texts are compared: 0 to the letter, otherwise without regard to case.
std::string folded(std::string_view text, sqlite3_value* compare) {
  return sqlite3_value_int(compare) == 0 ? std::string(text) : toLower(text);
}

void returnPosition(sqlite3_context* context, std::string_view text, std::size_t found) {
  const std::size_t characters =
      found == std::string::npos ? 0 : lengthInCharacters(text.substr(0, found)) + 1;
  sqlite3_result_int64(context, static_cast<std::int64_t>(characters));
}

/// vx_instr(start, text, wanted, compare): number of the character where `wanted` begins; 0 when it does not
/// occur.
void instr(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string text = folded(textOf(arguments[1]), arguments[3]);
  const std::size_t start = offsetOf(text, countOf(arguments[0], 1) - 1);
  returnPosition(
      context, text,
      start < text.size() ? text.find(folded(textOf(arguments[2]), arguments[3]), start) : text.npos);
}

/// vx_instrrev(text, wanted, start, compare): the last place where `wanted` occurs up to the character
/// `start`; -1: up to the end.
void instrrev(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::string text = folded(textOf(arguments[0]), arguments[3]);
  const std::string wanted = folded(textOf(arguments[1]), arguments[3]);
  const std::int64_t start = countOf(arguments[2], -1);
  if (start == 0)
    throw Error(err::invalidArgument,
                "Invalid argument: the search begins at a character, from 1 on, or with -1");
  const auto length = static_cast<std::int64_t>(lengthInCharacters(text));
  if (start > length || text.empty()) {
    sqlite3_result_int(context, 0);
    return;
  }
  const std::size_t end = offsetOf(text, start < 0 ? length : start);
  if (wanted.empty()) {
    sqlite3_result_int64(context, start < 0 ? length : start);
    return;
  }
  returnPosition(context, text, wanted.size() > end ? text.npos : text.rfind(wanted, end - wanted.size()));
}

/// vx_replace(text, wanted, by, start, count, compare): the text from the character `start` on, with `count`
/// occurrences replaced; -1: all.
void replace(sqlite3_context* context, sqlite3_value** arguments, int) {
  std::string_view text = textOf(arguments[0]);
  text = text.substr(offsetOf(text, countOf(arguments[3], 1) - 1));
  const std::string searched = folded(text, arguments[5]);
  const std::string wanted = folded(textOf(arguments[1]), arguments[5]);
  std::string out;
  std::size_t from = 0;
  for (std::int64_t left = countOf(arguments[4], -1); left != 0 && !wanted.empty(); --left) {
    const std::size_t found = searched.find(wanted, from);
    if (found == std::string::npos) break;
    out.append(text, from, found - from).append(textOf(arguments[2]));
    from = found + wanted.size();
  }
  returnText(context, out.append(text, from));
}

/// vx_strcomp(a, b, compare): -1, 0 or 1.
void compareTexts(sqlite3_context* context, sqlite3_value** arguments, int) {
  const int order = sqlite3_value_int(arguments[2]) == 0
                        ? textOf(arguments[0]).compare(textOf(arguments[1]))
                        : compareNoCase(textOf(arguments[0]), textOf(arguments[1]));
  sqlite3_result_int(context, order < 0 ? -1 : order > 0 ? 1 : 0);
}

constexpr SqlFunction functions[] = {{"vx_instr", 4, false, instr},
                                     {"vx_instrrev", 4, false, instrrev},
                                     {"vx_replace", 6, false, replace},
                                     {"vx_strcomp", 3, false, compareTexts}};

}  // namespace

std::span<const SqlFunction> searchFunctions() {
  return functions;
}

}  // namespace voxa
