#include "engines/jet_file/reader/texts.h"

#include <bit>
#include <cerrno>
#include <cstdint>

#include "engines/jet_file/reader/output.h"
#include "platform/text.h"

namespace voxa::jet {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";
constexpr unsigned western = 1252;

void appendCharacter(std::string& utf8, char32_t c) {
  if (c < 0x80) {
    utf8 += static_cast<char>(c);
  } else {
    utf8 += characterOf(c);
  }
}

/// Joins pairs of surrogates.
class Units {
 public:
  explicit Units(std::string& utf8) : utf8_(utf8) {}
  void add(char32_t unit) {
    if (high_ != 0 && unit >= 0xDC00 && unit < 0xE000) {
      appendCharacter(utf8_, 0x10000 + ((high_ - 0xD800) << 10) + (unit - 0xDC00));
      high_ = 0;
      return;
    }
    finish();
    if (unit >= 0xD800 && unit < 0xDC00) {
      high_ = unit;
    } else if (unit >= 0xDC00 && unit < 0xE000) {
      utf8_ += replacement;
    } else {
      appendCharacter(utf8_, unit);
    }
  }
  void finish() {
    if (high_ != 0) utf8_ += replacement;
    high_ = 0;
  }

 private:
  std::string& utf8_;
  char32_t high_ = 0;
};

/// Two bytes a character, or behind FF FE one byte a character. There a zero byte changes between the two.
void appendUnicode(std::string& utf8, std::string_view raw) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(raw[i]); };
  bool compressed = raw.starts_with("\xFF\xFE");
  const bool mayChange = compressed;
  if (compressed) raw.remove_prefix(2);
  Units units(utf8);
  for (std::size_t i = 0; i < raw.size();) {
    if (mayChange && byte(i) == 0) {
      compressed = !compressed;
      ++i;
    } else if (compressed) {
      units.add(byte(i++));
    } else {
      if (i + 1 == raw.size()) break;
      units.add(static_cast<char32_t>(byte(i) | byte(i + 1) << 8));
      i += 2;
    }
  }
  units.finish();
}

}  // namespace

Texts::Texts(bool unicode, unsigned codePage) : unicode_(unicode) {
  if (unicode || codePage == 0 || codePage == western) return;
  const iconv_t opened = ::iconv_open("UTF-8", ("CP" + std::to_string(codePage)).c_str());
  if (std::bit_cast<std::intptr_t>(opened) == -1) throw Failed{Failure::codePage};
  converter_ = opened;
}

Texts::~Texts() {
  if (converter_) ::iconv_close(*converter_);
}

void Texts::append(std::string& utf8, std::string_view raw) {
  if (unicode_) {
    appendUnicode(utf8, raw);
    return;
  }
  if (!converter_) {
    utf8 += fromCp1252(raw);
    return;
  }
  std::string from(raw);
  char* in = from.data();
  std::size_t left = from.size();
  while (left > 0) {
    char buffer[512];
    char* out = buffer;
    std::size_t room = sizeof buffer;
    const std::size_t result = ::iconv(*converter_, &in, &left, &out, &room);
    utf8.append(buffer, sizeof buffer - room);
    if (result == static_cast<std::size_t>(-1) && errno != E2BIG) {
      utf8 += replacement;
      ++in;
      --left;
    }
  }
  (void)::iconv(*converter_, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace voxa::jet
