#include "output/table_layout.h"

#include <algorithm>
#include <cctype>
#include <numeric>

#include "output/text_width.h"
#include "platform/text.h"

namespace voxa::cli {

namespace {

constexpr std::size_t longestWord = 16;  // a longer one is broken
constexpr std::size_t readable = 12;     // places that a column of texts keeps as long as others can give way

/// "Clock", " off"; "To", "Send".
std::vector<std::string> piecesOf(const std::string& heading) {
  std::vector<std::string> pieces(1);
  for (const char c : heading) {
    const std::string& last = pieces.back();
    const bool capital = c >= 'A' && c <= 'Z' && !last.empty() && last.back() >= 'a' && last.back() <= 'z';
    if (!last.empty() && (c == ' ' || capital)) pieces.emplace_back();
    pieces.back() += c;
  }
  return pieces;
}

std::string withoutBlanks(const std::string& piece) {
  return piece.substr(std::min(piece.find_first_not_of(' '), piece.size()));
}

/// Makes the widest columns narrower until the line is full, none narrower than its floor.
bool shrink(std::vector<std::size_t>& widths, const std::vector<std::size_t>& floors, std::size_t gap,
            std::size_t places) {
  std::size_t total = std::accumulate(widths.begin(), widths.end(), gap * (widths.size() - 1));
  for (; total > places; --total) {
    std::size_t* widest = nullptr;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      if (widths[i] > floors[i] && (widest == nullptr || widths[i] > *widest)) widest = &widths[i];
    }
    if (widest == nullptr) return false;
    --*widest;
  }
  return true;
}

}  // namespace

void ColumnNeed::addHeading(const std::string& heading) {
  whole = std::max(whole, textWidth(heading));
  for (const std::string& piece : piecesOf(heading))
    word = std::max(word, std::min(textWidth(withoutBlanks(piece)), longestWord));
}

void ColumnNeed::addCell(const std::string& text) {
  const auto isLetter = [](unsigned char c) { return std::isalpha(c) != 0 || c >= 0x80; };
  cells = std::max(cells, textWidth(text));
  whole = std::max(whole, cells);
  bool letters = false;
  std::size_t words = 0;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string_view one = takeUntil(rest, ' ');
    letters = letters || (!one.empty() && isLetter(static_cast<unsigned char>(one.front())));
    word = std::max(word, std::min(textWidth(one), longestWord));
    ++words;
  }
  wordy = wordy || (letters && words > 1);
}

TableLayout tableLayout(const std::vector<ColumnNeed>& columns, std::size_t places) {
  const auto each = [&](auto of) {
    std::vector<std::size_t> all;
    for (const ColumnNeed& column : columns) all.push_back(of(column));
    return all;
  };
  const auto text = [](const ColumnNeed& c, std::size_t otherwise) {
    return c.wordy ? std::min(otherwise, std::max(c.word, readable)) : otherwise;
  };
  const std::vector<std::size_t> floors[] = {
      each([&](const ColumnNeed& c) { return text(c, c.whole); }),
      each([&](const ColumnNeed& c) { return text(c, std::max(c.cells, c.word)); }),
      each([](const ColumnNeed& c) { return c.word; })};
  for (const std::size_t gap : {2, 1}) {
    TableLayout layout{each([](const ColumnNeed& c) { return c.whole; }), gap};
    for (const auto& floor : floors) {
      if (shrink(layout.widths, floor, gap, places)) return layout;
    }
  }
  return {};
}

std::vector<std::string> headingLines(const std::string& heading, std::size_t width) {
  std::vector<std::string> lines(1);
  for (const std::string& piece : piecesOf(heading)) {
    if (lines.back().empty() || textWidth(lines.back() + piece) <= width) {
      lines.back() += piece;
      continue;
    }
    lines.push_back(withoutBlanks(piece));
  }
  std::vector<std::string> all;
  for (const std::string& line : lines) {
    for (std::string& part : wrapped(line, width)) all.push_back(std::move(part));
  }
  return all;
}

}  // namespace voxa::cli
