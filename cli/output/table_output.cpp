#include "table_output.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

#include "platform/csv.h"
#include "platform/text.h"

namespace voxa::cli {

namespace {

struct Cell {
  std::string text;
  bool number = false;  // numbers stand at the right edge of their column
};

/// Bytes are shown in base 16.
std::string printed(const Value& value) {
  const auto* bytes = std::get_if<Bytes>(&value.data());
  return bytes == nullptr ? value.toText() : hexText(*bytes);
}

Cell shown(const Value& value) {
  if (value.isNull()) return {"-"};
  if (const auto* flag = std::get_if<bool>(&value.data())) return {*flag ? "yes" : "no"};
  // A line feed or tab would break the columns.
  std::string text = printed(value);
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\t'; }, '?');
  return {terminalText(text), !value.isText() && !std::holds_alternative<DateTime>(value.data())};
}

nlohmann::ordered_json toJson(const Value& value) {
  return std::visit(
      [&](const auto& held) -> nlohmann::ordered_json {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) return nullptr;
        if constexpr (std::is_same_v<Held, DateTime> || std::is_same_v<Held, Bytes>) return printed(value);
        if constexpr (std::is_constructible_v<nlohmann::ordered_json, Held>) return held;
      },
      value.data());
}

std::string padded(const Cell& cell, std::size_t width) {
  const std::string blanks(width - std::min(width, lengthInCharacters(cell.text)), ' ');
  return cell.number ? blanks + cell.text : cell.text + blanks;
}

nlohmann::ordered_json toObject(const std::vector<std::string>& columns, const std::vector<Value>& cells) {
  auto object = nlohmann::ordered_json::object();
  for (std::size_t i = 0; i < columns.size(); ++i) object[columns[i]] = toJson(cells[i]);
  return object;
}

std::string jsonText(const nlohmann::ordered_json& value) {
  return value.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
}

void printAligned(std::ostream& out, const std::vector<std::string>& columns, const ListRows& rows) {
  std::vector<std::size_t> widths;
  for (const std::string& column : columns) widths.push_back(lengthInCharacters(column));
  rows([&](const std::vector<Value>& cells) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], lengthInCharacters(shown(cells[i]).text));
    }
  });
  std::string text;
  const auto cell = [&](const Cell& shownCell, std::size_t i) {
    text += padded(shownCell, widths[i]) + "  ";
  };
  const auto end = [&] {
    text.erase(text.find_last_not_of(' ') + 1);
    out << text << '\n';
    text.clear();
  };
  for (std::size_t i = 0; i < columns.size(); ++i) cell({columns[i]}, i);
  end();
  rows([&](const std::vector<Value>& cells) {
    for (std::size_t i = 0; i < widths.size(); ++i) cell(shown(cells[i]), i);
    end();
  });
}

}  // namespace

void printList(std::ostream& out, const std::vector<std::string>& columns, bool json, const ListRows& rows) {
  if (!json) return printAligned(out, columns, rows);
  bool any = false;
  rows([&](const std::vector<Value>& cells) {
    std::string text = jsonText(toObject(columns, cells));
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; ++at) text.insert(at + 1, "  ");
    out << (any ? ",\n  " : "[\n  ") << text;
    any = true;
  });
  out << (any ? "\n]\n" : "[]\n");
}

void printCsv(std::ostream& out, const std::vector<std::string>& columns, const ListRows& rows) {
  const auto field = [](const Value& value) -> std::string {
    if (value.isNull()) return "";
    if (const auto* flag = std::get_if<bool>(&value.data())) return *flag ? "yes" : "no";
    // Only a text can be a formula: a number may begin with a sign.
    return value.isText() ? csvField(value.toText()) : printed(value);
  };
  const auto line = [&](const std::vector<Value>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) out << (i > 0 ? "," : "") << field(cells[i]);
    out << "\r\n";
  };
  line({columns.begin(), columns.end()});
  rows(line);
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
  out << jsonText(value) << '\n';
}

}  // namespace voxa::cli
