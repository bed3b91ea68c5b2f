#include "output/aligned_table.h"

#include <algorithm>
#include <numeric>
#include <ostream>

#include "output/text_width.h"
#include "platform/text.h"

namespace voxa::cli {

namespace {

constexpr std::size_t gap = 2;     // blanks between columns
constexpr std::size_t least = 10;  // places that a wrapped column keeps

std::string shown(const Cell& cell) {
  std::string text = cell.text();
  // A line feed or tab would break the columns.
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\t'; }, '?');
  return terminalText(text);
}

void pad(std::string& line, std::size_t blanks) {
  line.append(blanks, ' ');
}

/// A line of a file or a pipe: nothing is wrapped.
void appendPadded(std::string& line, const std::string& text, std::size_t width, bool number) {
  const std::size_t blanks = width - std::min(width, textWidth(text));
  if (number) pad(line, blanks);
  line += text;
  if (!number) pad(line, blanks);
  pad(line, gap);
}

struct Shown {
  std::vector<std::string> lines;
  bool number = false;
  Style style = Style::plain;
};

void printWrapped(std::ostream& out, const std::vector<Shown>& cells,
                  const std::vector<std::size_t>& widths) {
  std::size_t height = 1;
  for (const Shown& cell : cells) height = std::max(height, cell.lines.size());
  for (std::size_t line = 0; line < height; ++line) {
    std::string blanks;  // are written once something follows
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string text = line < cells[i].lines.size() ? cells[i].lines[line] : "";
      const std::size_t free = widths[i] - std::min(widths[i], textWidth(text));
      if (cells[i].number) pad(blanks, free);
      if (!text.empty()) {
        out << blanks << cells[i].style << text << Style::plain;
        blanks.clear();
      }
      pad(blanks, (cells[i].number ? 0 : free) + gap);
    }
    out << '\n';
  }
}

void printOnTerminal(std::ostream& out, const std::vector<std::string>& columns, const ListRows& rows,
                     const std::vector<std::size_t>& widths) {
  std::vector<Shown> line(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i)
    line[i] = {wrapped(columns[i], widths[i]), false, Style::heading};
  printWrapped(out, line, widths);
  rows([&](const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < columns.size(); ++i)
      line[i] = {wrapped(shown(cells[i]), widths[i]), cells[i].isNumber(), styleOf(columns[i], cells[i])};
    printWrapped(out, line, widths);
  });
}

}  // namespace

void fitColumns(std::vector<std::size_t>& widths, const std::vector<bool>& mayWrap, std::size_t line) {
  const auto total = [&] { return std::accumulate(widths.begin(), widths.end(), gap * (widths.size() - 1)); };
  for (std::size_t width = total(); width > line; --width) {
    std::size_t* widest = nullptr;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      if (mayWrap[i] && widths[i] > least && (widest == nullptr || widths[i] > *widest)) widest = &widths[i];
    }
    if (widest == nullptr) return;
    --*widest;
  }
}

Style styleOf(const std::string& column, const Cell& cell) {
  if (column == "ToSend") return cell.isTrue() ? Style::toDo : Style::plain;
  const std::string text = cell.text();
  if (column == "Answers" || column == "State" || column == "Outcome" || column == "Meaning") {
    const bool wrong = text == "no" || text.starts_with("silent") || text.starts_with("refused");
    return wrong ? Style::wrong : Style::plain;
  }
  if (column == "Missing" || column == "In doubt")
    return text == "0" || text == "-" ? Style::plain : Style::toDo;
  return Style::plain;
}

void printAligned(std::ostream& out, const std::vector<std::string>& columns, const ListRows& rows) {
  std::vector<std::size_t> widths;
  std::vector<bool> mayWrap(columns.size(), false);
  for (const std::string& column : columns) widths.push_back(textWidth(column));
  rows([&](const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], textWidth(shown(cells[i])));
      mayWrap[i] = mayWrap[i] || cells[i].isText();
    }
  });
  if (const std::size_t terminal = terminalWidth(out); terminal > 0) {
    fitColumns(widths, mayWrap, terminal);
    return printOnTerminal(out, columns, rows, widths);
  }
  std::string line;
  const auto end = [&] {
    line.erase(line.find_last_not_of(' ') + 1);
    line += '\n';
    out << line;
    line.clear();
  };
  for (std::size_t i = 0; i < columns.size(); ++i) appendPadded(line, columns[i], widths[i], false);
  end();
  rows([&](const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < widths.size(); ++i)
      appendPadded(line, shown(cells[i]), widths[i], cells[i].isNumber());
    end();
  });
}

}  // namespace voxa::cli
