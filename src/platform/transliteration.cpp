#include "platform/transliteration.h"

#include <algorithm>
#include <cstdint>

#include "platform/error.h"
#include "platform/icu.h"
#include "platform/text.h"

namespace voxa {

namespace {

// As ICU's C interface declares them.
struct Transliterator;
constexpr std::int32_t zeroTerminated = -1;
constexpr int forward = 0;
using Open = Transliterator* (*)(const char16_t* id, std::int32_t idLength, int direction,
                                 const char16_t* rules, std::int32_t rulesLength, void* parseError,
                                 int* status);
using Transform = void (*)(const Transliterator* how, char16_t* text, std::int32_t* length,
                           std::int32_t capacity, std::int32_t start, std::int32_t* limit, int* status);

constexpr char32_t firstOfTwo = 0x10000;  // characters from here on are two units of UTF-16
constexpr char32_t highSurrogate = 0xD800;
constexpr char32_t lowSurrogate = 0xDC00;
constexpr unsigned bitsOfSurrogate = 10;

std::u16string toUtf16(std::string_view utf8) {
  std::u16string units;
  for (std::size_t at = 0; at < utf8.size();) {
    const std::size_t end = behindCharacter(utf8, at);
    const char32_t character = firstCharacter(utf8.substr(at, end - at));
    at = end;
    if (character < firstOfTwo) {
      units += static_cast<char16_t>(character);
      continue;
    }
    const char32_t rest = character - firstOfTwo;
    units += static_cast<char16_t>(highSurrogate + (rest >> bitsOfSurrogate));
    units += static_cast<char16_t>(lowSurrogate + (rest & 0x3FFU));
  }
  return units;
}

std::string toUtf8(std::u16string_view units) {
  std::string text;
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t character = units[i];
    if (character >= highSurrogate && character < lowSurrogate && i + 1 < units.size()) {
      ++i;
      character = firstOfTwo + ((character - highSurrogate) << bitsOfSurrogate) + (units[i] - lowSurrogate);
    }
    text += characterOf(character);
  }
  return text;
}

/// A way of ICU's to change texts, by its identifier.
class Way {
 public:
  explicit Way(const char16_t* id)
      : transform_(reinterpret_cast<Transform>(icuFunction("utrans_transUChars"))) {
    const auto open = reinterpret_cast<Open>(icuFunction("utrans_openU"));
    int status = 0;
    if (open == nullptr || transform_ == nullptr) return;
    how_ = open(id, zeroTerminated, forward, nullptr, 0, nullptr, &status);
    if (status > 0) how_ = nullptr;
  }

  [[nodiscard]] bool isThere() const { return how_ != nullptr; }
  [[nodiscard]] std::string apply(std::string_view utf8) const {
    constexpr std::size_t longestOfOne = 32;  // letters that one character becomes
    std::u16string units = toUtf16(utf8);
    auto length = static_cast<std::int32_t>(units.size());
    std::int32_t limit = length;
    units.resize((units.size() + 1) * longestOfOne);
    int status = 0;
    transform_(how_, units.data(), &length, static_cast<std::int32_t>(units.size()), 0, &limit, &status);
    if (status > 0) return std::string(utf8);
    units.resize(static_cast<std::size_t>(length));
    return toUtf8(units);
  }

 private:
  Transform transform_;
  Transliterator* how_ = nullptr;  // for as long as the process lives
};

}  // namespace

bool isOfCp1252(std::string_view utf8) {
  try {
    (void)toCp1252(utf8);
    return true;
  } catch (const Error&) {
    return false;
  }
}

std::optional<std::string> inLatinLetters(std::string_view utf8) {
  // Letters and their accents may be separate characters, which together the page has.
  static const Way composed(u"NFC");
  static const Way latin(u"Any-Latin; Latin-ASCII");
  if (!composed.isThere() || !latin.isThere()) return std::nullopt;
  const std::string text = composed.apply(utf8);
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = behindCharacter(text, at);
    const bool stays = isOfCp1252(std::string_view(text).substr(at, end - at));
    while (end < text.size()) {
      const std::size_t next = behindCharacter(text, end);
      if (isOfCp1252(std::string_view(text).substr(end, next - end)) != stays) break;
      end = next;
    }
    const std::string run = text.substr(at, end - at);
    result += stays ? run : latin.apply(run);
    at = end;
  }
  return result;
}

}  // namespace voxa
