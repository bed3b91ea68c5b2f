#include "output/text_width.h"

#include <algorithm>
#include <array>

#include "platform/text.h"

namespace voxa::cli {

namespace {

struct Range {
  char32_t first, last;
};

// The blocks that matter to names; not every single character that the standards list.
constexpr std::array<Range, 14> narrowest = {{{0x0300, 0x036F},
                                              {0x0483, 0x0489},
                                              {0x0591, 0x05BD},
                                              {0x0610, 0x061A},
                                              {0x064B, 0x065F},
                                              {0x093C, 0x093C},
                                              {0x094D, 0x094D},
                                              {0x0E34, 0x0E3A},
                                              {0x0E47, 0x0E4E},
                                              {0x1AB0, 0x1AFF},
                                              {0x200B, 0x200F},
                                              {0x20D0, 0x20FF},
                                              {0xFE00, 0xFE0F},
                                              {0xFE20, 0xFE2F}}};
constexpr std::array<Range, 10> widest = {{{0x1100, 0x115F},
                                           {0x2E80, 0x303E},
                                           {0x3041, 0xA4CF},
                                           {0xA960, 0xA97C},
                                           {0xAC00, 0xD7A3},
                                           {0xF900, 0xFAFF},
                                           {0xFE30, 0xFE6F},
                                           {0xFF00, 0xFF60},
                                           {0xFFE0, 0xFFE6},
                                           {0x1F300, 0x3FFFD}}};

std::size_t widthOf(char32_t character) {
  const auto has = [&](const auto& ranges) {
    return std::any_of(ranges.begin(), ranges.end(), [&](const Range& range) {
      return character >= range.first && character <= range.last;
    });
  };
  if (character < narrowest.front().first) return 1;
  return has(narrowest) ? 0 : has(widest) ? 2 : 1;
}

/// Where the part of a text ends that fits in so many places: behind one character at least.
std::size_t fitting(std::string_view text, std::size_t width) {
  std::size_t end = 0;
  for (std::size_t used = 0; end < text.size();) {
    const std::size_t behind = behindCharacter(text, end);
    used += widthOf(firstCharacter(text.substr(end, behind - end)));
    if (used > width && end > 0) break;
    end = behind;
  }
  return end;
}

void wrapLine(std::string_view line, std::size_t width, std::vector<std::string>& lines) {
  while (width > 0 && textWidth(line) > width) {
    std::size_t end = fitting(line, width);
    const std::size_t blank = line.find_last_of(' ', end);  // one behind the last place is dropped
    if (blank != std::string_view::npos && blank > 0) end = blank;
    lines.emplace_back(line.substr(0, end));
    line.remove_prefix(end);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  }
  lines.emplace_back(line);
}

}  // namespace

std::size_t textWidth(std::string_view utf8) {
  constexpr auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::all_of(utf8.begin(), utf8.end(), isAscii)) return utf8.size();
  std::size_t width = 0;
  for (std::size_t at = 0; at < utf8.size();) {
    const std::size_t behind = behindCharacter(utf8, at);
    width += widthOf(firstCharacter(utf8.substr(at, behind - at)));
    at = behind;
  }
  return width;
}

std::vector<std::string> wrapped(const std::string& utf8, std::size_t width) {
  std::vector<std::string> lines;
  std::string_view rest = utf8;
  do {
    wrapLine(takeUntil(rest, '\n'), width, lines);
  } while (!rest.empty());
  return lines;
}

}  // namespace voxa::cli
