#include "output/table_output.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "output/aligned_table.h"
#include "output/terminal_filter.h"
#include "output/text_width.h"
#include "platform/text.h"

namespace voxa::cli {

namespace {

/// "LastContact" of "Last contact".
std::string keyOf(const std::string& column) {
  std::string key;
  for (const char c : column) {
    if (!key.empty() && key.back() == ' ') {
      key.back() = toUpper(std::string(1, c)).front();
    } else {
      key += c;
    }
  }
  return key;
}

nlohmann::ordered_json toObject(const std::vector<std::string>& columns, const std::vector<Cell>& cells) {
  auto object = nlohmann::ordered_json::object();
  for (std::size_t i = 0; i < columns.size(); ++i) object[keyOf(columns[i])] = cells[i].json();
  return object;
}

std::string jsonText(const nlohmann::ordered_json& value, int indentation = -1) {
  return value.dump(indentation, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

void printList(std::ostream& out, const std::vector<std::string>& columns, bool json, const ListRows& rows) {
  if (!json) return printAligned(out, columns, rows);
  std::vector<std::string> keys;
  for (const std::string& column : columns)
    keys.push_back((keys.empty() ? "{\n    " : ",\n    ") + jsonText(keyOf(column)) + ": ");
  bool any = false;
  std::string text;
  rows([&](const std::vector<Cell>& cells) {
    text = any ? ",\n  " : "[\n  ";
    for (std::size_t i = 0; i < keys.size(); ++i) text += keys[i] + jsonText(cells[i].json());
    out << text << "\n  }";
    any = true;
  });
  out << (any ? "\n]\n" : "[]\n");
}

void printCsv(std::ostream& out, const std::vector<std::string>& columns, const ListRows& rows) {
  const auto line = [&](const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) out << (i > 0 ? "," : "") << cells[i].field();
    out << "\r\n";
  };
  line({columns.begin(), columns.end()});
  rows(line);
}

void printOne(std::ostream& out, const std::vector<std::string>& columns, const std::vector<Cell>& cells,
              bool json) {
  if (json) return printJson(out, toObject(columns, cells));
  constexpr std::size_t gap = 2;
  constexpr std::size_t least = 20;  // places of a value, on the narrowest terminal
  std::size_t names = 0;
  for (const std::string& column : columns) names = std::max(names, textWidth(column) + gap);
  const std::size_t terminal = terminalWidth(out);
  const std::size_t width = terminal == 0 ? 0 : std::max(terminal - std::min(terminal, names), least);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    out << Style::heading << columns[i] << Style::plain;
    std::size_t at = textWidth(columns[i]);
    for (const std::string& line : wrapped(terminalText(cells[i].text()), width)) {
      out << std::string(names - at, ' ') << styleOf(columns[i], cells[i]) << line << Style::plain << '\n';
      at = 0;
    }
  }
}

void TableOutput::print(std::ostream& out, bool json) const {
  printList(out, columns_, json, [this](const auto& row) {
    for (const auto& cells : rows_) row(cells);
  });
}

nlohmann::ordered_json TableOutput::json() const {
  auto list = nlohmann::ordered_json::array();
  for (const auto& cells : rows_) list.push_back(toObject(columns_, cells));
  return list;
}

void printJson(std::ostream& out, const nlohmann::ordered_json& value) {
  out << jsonText(value, 2) << '\n';
}

}  // namespace voxa::cli
