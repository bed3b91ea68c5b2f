#include "platform/text.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "platform/error.h"

namespace voxa {
namespace {

/// A broken byte decodes to this number plus the byte. It lies beyond every character, so it equals none.
constexpr char32_t brokenByte = 0x110000;

/// The characters for the bytes 0x80 to 0x9F of code page 1252. Every other byte has the number of its
/// character.
constexpr std::array<char16_t, 32> upperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// Base letters of 0xC0 to 0xFF in lower-case: a text sorts by these first.
constexpr std::string_view baseLetters =
    "aaaaaaaceeeeiiiidnooooo\xD7"
    "ouuuuytsaaaaaaaceeeeiiiidnooooo\xF7"
    "ouuuuyty";
static_assert(baseLetters.size() == 64);

unsigned byteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

/// Decodes the character at `i` and moves `i` behind it. A byte that starts no character gives brokenByte
/// plus the byte.
char32_t decode(std::string_view text, std::size_t& i) {
  const unsigned lead = byteAt(text, i++);
  if (lead < 0x80) return lead;
  const std::size_t more = lead >= 0xC2 && lead <= 0xDF   ? 1
                           : lead >= 0xE0 && lead <= 0xEF ? 2
                           : lead >= 0xF0 && lead <= 0xF4 ? 3
                                                          : 0;
  if (more == 0 || text.size() - i < more) return brokenByte + lead;
  char32_t c = lead & (0x3FU >> more);
  for (std::size_t k = 0; k < more; ++k) {
    const unsigned next = byteAt(text, i + k);
    if ((next & 0xC0U) != 0x80U) return brokenByte + lead;
    c = (c << 6U) | (next & 0x3FU);
  }
  const bool overlong = (more == 2 && c < 0x800) || (more == 3 && c < 0x10000);
  if (overlong || (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF) return brokenByte + lead;
  i += more;
  return c;
}

bool isAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

void encode(char32_t c, std::string& out) {
  const auto put = [&](char32_t byte) { out += static_cast<char>(byte); };
  if (c >= brokenByte) {
    put(c - brokenByte);
  } else if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | (c >> 6U));
    put(0x80 | (c & 0x3FU));
  } else if (c < 0x10000) {
    put(0xE0 | (c >> 12U));
    put(0x80 | ((c >> 6U) & 0x3FU));
    put(0x80 | (c & 0x3FU));
  } else {
    put(0xF0 | (c >> 18U));
    put(0x80 | ((c >> 12U) & 0x3FU));
    put(0x80 | ((c >> 6U) & 0x3FU));
    put(0x80 | (c & 0x3FU));
  }
}

constexpr char32_t lower(char32_t c) {
  if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 0x20 : c;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 0x20;
  switch (c) {
    case 0x0152:
    case 0x0160:
    case 0x017D:
      return c + 1;
    case 0x0178:
      return 0xFF;
    default:
      return c;
  }
}

constexpr char32_t upper(char32_t c) {
  if (c < 0x80) return c >= 'a' && c <= 'z' ? c - 0x20 : c;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 0x20;
  switch (c) {
    case 0x0153:
    case 0x0161:
    case 0x017E:
      return c - 1;
    case 0xFF:
      return 0x0178;
    default:
      return c;
  }
}

/// The letter without its accent, of a lower-case character.
constexpr char32_t base(char32_t c) {
  if (c >= 0xC0 && c <= 0xFF) return static_cast<unsigned char>(baseLetters[c - 0xC0]);
  switch (c) {
    case 0x0153:
      return 'o';
    case 0x0161:
      return 's';
    case 0x017E:
      return 'z';
    default:
      return c;
  }
}

/// Where a lower-case character sorts: first what is neither digit nor letter, then digits, then letters.
constexpr char32_t placeOf(char32_t c) {
  constexpr char32_t digits = 0x1000000;
  constexpr char32_t letters = 0x2000000;
  if (c < 0x80) return c >= 'a' && c <= 'z' ? letters + c : c >= '0' && c <= '9' ? digits + c : c;
  const char32_t without = base(c);
  if (without != c) return letters + without;
  // The signs of code page 1252, and the general punctuation and symbols of Unicode.
  const bool sign = c < 0xC0 || c == 0xD7 || c == 0xF7 || (c >= 0x2000 && c < 0x2C00);
  return sign ? c : letters + c;
}

constexpr std::array<char32_t, 128> makeAsciiPlaces() {
  std::array<char32_t, 128> places{};
  for (char32_t c = 0; c < 128; ++c) places[c] = placeOf(lower(c));
  return places;
}
constexpr std::array<char32_t, 128> asciiPlaces = makeAsciiPlaces();

/// Compares two texts that are the same up to `begin`. place: where a lower-case character sorts; letters
/// with and without accents have one. The first difference in accents counts only when all places are the
/// same.
template <typename Place>
int compareBehind(std::string_view a, std::string_view b, std::size_t begin, Place place) {
  int accents = 0;
  std::size_t i = begin;
  std::size_t j = begin;
  while (i < a.size() && j < b.size()) {
    const char32_t ca = lower(decode(a, i));
    const char32_t cb = lower(decode(b, j));
    if (ca == cb) continue;
    const char32_t pa = place(ca);
    const char32_t pb = place(cb);
    if (pa != pb) return pa < pb ? -1 : 1;
    if (accents == 0) accents = ca < cb ? -1 : 1;
  }
  if (i < a.size()) return 1;
  if (j < b.size()) return -1;
  return accents;
}

template <typename Map>
std::string mapped(std::string_view text, Map map) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) encode(map(decode(text, i)), out);
  return out;
}

std::string codePointName(char32_t c) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string out = "U+";
  for (unsigned shift = c > 0xFFFF ? 20 : 12;; shift -= 4) {
    out += digits[(c >> shift) & 0xFU];
    if (shift == 0) return out;
  }
}

bool isControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

/// The byte of a character in code page 1252, or -1.
int cp1252Byte(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<int>(c);
  const auto found = std::find(upperControls.begin(), upperControls.end(), c);
  return found == upperControls.end() ? -1
                                      : static_cast<int>(0x80 + std::distance(upperControls.begin(), found));
}

}  // namespace

std::string toCp1252(std::string_view utf8) {
  if (isAscii(utf8)) return std::string(utf8);
  std::string out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const std::size_t start = i;
    const char32_t c = decode(utf8, i);
    if (c >= brokenByte) {
      throw Error(err::invalidArgument,
                  "The text is not valid UTF-8 at its byte " + std::to_string(start + 1));
    }
    const int byte = cp1252Byte(c);
    if (byte < 0) {
      throw Error(err::invalidArgument, "The character \"" + std::string(utf8.substr(start, i - start)) +
                                            "\" (" + codePointName(c) + ") does not exist in code page 1252");
    }
    out += static_cast<char>(byte);
  }
  return out;
}

std::string fromCp1252(std::string_view bytes) {
  if (isAscii(bytes)) return std::string(bytes);
  std::string out;
  out.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const unsigned byte = byteAt(bytes, i);
    encode(byte >= 0x80 && byte < 0xA0 ? upperControls[byte - 0x80] : static_cast<char32_t>(byte), out);
  }
  return out;
}

int compareNoCase(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  std::size_t i = 0;
  for (; i < common; ++i) {
    const unsigned ca = byteAt(a, i);
    const unsigned cb = byteAt(b, i);
    if ((ca | cb) >= 0x80) break;
    if (ca == cb) continue;
    const char32_t pa = asciiPlaces[ca];
    const char32_t pb = asciiPlaces[cb];
    if (pa != pb) return pa < pb ? -1 : 1;
  }
  return compareBehind(a, b, i, placeOf);
}

int compareAsBefore(std::string_view a, std::string_view b) {
  return compareBehind(a, b, 0, base);
}

bool equalNoCase(std::string_view a, std::string_view b) {
  // Both forms of a letter have the same length, so different lengths mean different texts.
  return a.size() == b.size() && compareNoCase(a, b) == 0;
}

std::string toLower(std::string_view text) {
  return mapped(text, lower);
}

std::string_view takeUntil(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return taken;
}

std::string trimmed(const std::string& text) {
  constexpr const char* space = " \t\n\v\f\r";
  const auto first = text.find_first_not_of(space);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(space) - first + 1);
}

std::string toUpper(std::string_view text) {
  return mapped(text, upper);
}

std::size_t behindCharacter(std::string_view utf8, std::size_t at) {
  ++at;
  while (at < utf8.size() && (byteAt(utf8, at) & 0xC0U) == 0x80U) ++at;
  return at;
}

std::size_t lengthInCharacters(std::string_view utf8) {
  std::size_t n = 0;
  for (std::size_t i = 0; i < utf8.size(); ++n) decode(utf8, i);
  return n;
}

char32_t firstCharacter(std::string_view utf8) {
  std::size_t at = 0;
  return decode(utf8, at);
}

std::string characterOf(char32_t number) {
  std::string out;
  encode(number, out);
  return out;
}

bool isUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    if (decode(text, i) >= brokenByte) return false;
  }
  return true;
}

bool hasControls(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    if (isControl(decode(text, i))) return true;
  }
  return false;
}

std::string terminalText(std::string_view text) {
  return mapped(text, [](char32_t c) -> char32_t {
    if (c == '\n' || c == '\t') return c;
    return isControl(c) || c >= brokenByte ? '?' : c;
  });
}

std::string zeroPadded(std::int64_t number, int width) {
  std::string digits = std::to_string(number);
  const std::size_t sign = number < 0 ? 1 : 0;
  const std::size_t wanted = sign + static_cast<std::size_t>(std::max(width, 0));
  if (digits.size() < wanted) digits.insert(sign, wanted - digits.size(), '0');
  return digits;
}

}  // namespace voxa
