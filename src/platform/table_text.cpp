#include "platform/table_text.h"

#include <algorithm>
#include <map>

#include "platform/text.h"

namespace voxa {

namespace {

constexpr std::string_view markOfUtf8 = "\xEF\xBB\xBF";
constexpr std::string_view markOfLittleEnd = "\xFF\xFE";
constexpr std::string_view markOfBigEnd = "\xFE\xFF";
constexpr char32_t replacement = 0xFFFD;

std::string fromUtf16(std::string_view bytes) {
  const bool bigEnd = bytes.starts_with(markOfBigEnd);
  if (bigEnd || bytes.starts_with(markOfLittleEnd)) bytes.remove_prefix(2);
  const auto unitAt = [&](std::size_t at) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    return static_cast<char32_t>(bigEnd ? first * 256U + second : second * 256U + first);
  };
  const auto isHigh = [](char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; };
  const auto isLow = [](char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; };
  std::string text;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t character = unitAt(at);
    if (isHigh(character) && at + 3 < bytes.size() && isLow(unitAt(at + 2))) {
      character = 0x10000 + ((character - 0xD800) << 10U) + (unitAt(at + 2) - 0xDC00);
      at += 2;
    } else if (isHigh(character) || isLow(character)) {
      character = replacement;
    }
    text += characterOf(character);
  }
  return text;
}

}  // namespace

std::optional<TextEncoding> encodingNamed(std::string_view word) {
  static const std::map<std::string, TextEncoding> words = {
      {"utf-8", TextEncoding::utf8},    {"utf8", TextEncoding::utf8},
      {"utf-16", TextEncoding::utf16},  {"utf16", TextEncoding::utf16},
      {"cp1252", TextEncoding::cp1252}, {"windows-1252", TextEncoding::cp1252},
      {"latin1", TextEncoding::cp1252}, {"ansi", TextEncoding::cp1252}};
  const auto found = words.find(toLower(word));
  return found == words.end() ? std::nullopt : std::optional(found->second);
}

std::string decodedText(std::string_view bytes, std::optional<TextEncoding> encoding) {
  if (!encoding) {
    const bool marked = bytes.starts_with(markOfLittleEnd) || bytes.starts_with(markOfBigEnd);
    encoding = marked ? TextEncoding::utf16 : isUtf8(bytes) ? TextEncoding::utf8 : TextEncoding::cp1252;
  }
  if (encoding == TextEncoding::utf16) return fromUtf16(bytes);
  if (encoding == TextEncoding::cp1252) return fromCp1252(bytes);
  if (bytes.starts_with(markOfUtf8)) bytes.remove_prefix(markOfUtf8.size());
  return std::string(bytes);
}

std::optional<char> delimiterNamed(std::string_view word) {
  if (equalNoCase(word, "tab")) return '\t';
  if (equalNoCase(word, "comma")) return ',';
  if (equalNoCase(word, "semicolon")) return ';';
  const bool one = word.size() == 1 && word != "\"" && word != "\n" && word != "\r";
  return one ? std::optional(word.front()) : std::nullopt;
}

char delimiterOf(std::string_view table) {
  constexpr std::string_view possible = ",;\t";
  std::map<char, int> counts;
  bool quoted = false;
  for (const char c : table) {
    if (c == '"') quoted = !quoted;
    if (quoted) continue;
    if (c == '\n' || c == '\r') break;
    if (possible.find(c) != std::string_view::npos) ++counts[c];
  }
  return *std::max_element(possible.begin(), possible.end(),
                           [&](char one, char other) { return counts[one] < counts[other]; });
}

}  // namespace voxa
