#include "output/aligned_table.h"

#include <algorithm>
#include <ostream>

#include "output/table_layout.h"
#include "output/text_width.h"
#include "platform/text.h"

namespace voxa::cli {

namespace {

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
  constexpr std::size_t gap = TableLayout().gap;

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

void printWrapped(std::ostream& out, const std::vector<Shown>& cells, const TableLayout& layout) {
  std::size_t height = 1;
  for (const Shown& cell : cells) height = std::max(height, cell.lines.size());
  for (std::size_t line = 0; line < height; ++line) {
    std::string blanks;  // are written once something follows
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string text = line < cells[i].lines.size() ? cells[i].lines[line] : "";
      const std::size_t free = layout.widths[i] - std::min(layout.widths[i], textWidth(text));
      if (cells[i].number) pad(blanks, free);
      if (!text.empty()) {
        out << blanks << cells[i].style << text << Style::plain;
        blanks.clear();
      }
      pad(blanks, (cells[i].number ? 0 : free) + layout.gap);
    }
    out << '\n';
  }
}

void printOnTerminal(std::ostream& out, const std::vector<std::string>& columns, const ListRows& rows,
                     const TableLayout& layout) {
  std::vector<Shown> line(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i)
    line[i] = {headingLines(columns[i], layout.widths[i]), false, Style::heading};
  printWrapped(out, line, layout);
  rows([&](const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < columns.size(); ++i)
      line[i] = {wrapped(shown(cells[i]), layout.widths[i]), cells[i].isNumber(),
                 styleOf(columns[i], cells[i])};
    printWrapped(out, line, layout);
  });
}

/// A field a line, for more columns than a terminal has places for.
void printRecords(std::ostream& out, const std::vector<std::string>& columns, const ListRows& rows) {
  bool first = true;
  rows([&](const std::vector<Cell>& cells) {
    if (!first) out << '\n';
    first = false;
    printOne(out, columns, cells, false);
  });
}

}  // namespace

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
  std::vector<ColumnNeed> needs(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) needs[i].addHeading(columns[i]);
  rows([&](const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < needs.size(); ++i) needs[i].addCell(shown(cells[i]));
  });
  if (const std::size_t terminal = terminalWidth(out); terminal > 0) {
    const TableLayout layout = tableLayout(needs, terminal);
    return layout.widths.empty() ? printRecords(out, columns, rows)
                                 : printOnTerminal(out, columns, rows, layout);
  }
  std::string line;
  const auto end = [&] {
    line.erase(line.find_last_not_of(' ') + 1);
    line += '\n';
    out << line;
    line.clear();
  };
  for (std::size_t i = 0; i < columns.size(); ++i) appendPadded(line, columns[i], needs[i].whole, false);
  end();
  rows([&](const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < needs.size(); ++i)
      appendPadded(line, shown(cells[i]), needs[i].whole, cells[i].isNumber());
    end();
  });
}

}  // namespace voxa::cli
