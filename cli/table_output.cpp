#include "table_output.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

#include "platform/text.h"

namespace voxa::cli {

namespace {

struct Cell {
  std::string text;
  bool number = false;  // numbers stand at the right edge of their column
};

Cell shown(const Value& value) {
  if (value.isNull()) return {"-"};
  if (const auto* flag = std::get_if<bool>(&value.data())) return {*flag ? "yes" : "no"};
  std::string text = value.toText();
  // What a terminal would take for a command: no text of this installation has any, somebody else's might.
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
  return {std::move(text), !value.isText() && !std::holds_alternative<DateTime>(value.data())};
}

nlohmann::ordered_json toJson(const Value& value) {
  return std::visit(
      [&](const auto& held) -> nlohmann::ordered_json {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) return nullptr;
        if constexpr (std::is_same_v<Held, DateTime>) return value.toText();
        if constexpr (std::is_constructible_v<nlohmann::ordered_json, Held>) return held;
      },
      value.data());
}

std::string padded(const Cell& cell, std::size_t width) {
  const std::string blanks(width - std::min(width, lengthInCharacters(cell.text)), ' ');
  return cell.number ? blanks + cell.text : cell.text + blanks;
}

}  // namespace

void TableOutput::print(std::ostream& out, bool json) const {
  if (json) {
    printJson(out, this->json());
  } else {
    printAligned(out);
  }
}

void TableOutput::printAligned(std::ostream& out) const {
  std::vector<std::vector<Cell>> lines(1);
  for (const std::string& column : columns_) lines.front().push_back({column});
  for (const auto& row : rows_) {
    std::vector<Cell>& line = lines.emplace_back();
    for (const Value& value : row) line.push_back(shown(value));
  }
  std::vector<std::size_t> widths(columns_.size());
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], lengthInCharacters(line[i].text));
    }
  }
  for (const auto& line : lines) {
    std::string text;
    for (std::size_t i = 0; i < widths.size(); ++i) text += padded(line[i], widths[i]) + "  ";
    text.erase(text.find_last_not_of(' ') + 1);
    out << text << '\n';
  }
}

nlohmann::ordered_json TableOutput::json() const {
  auto list = nlohmann::ordered_json::array();
  for (const auto& row : rows_) {
    auto object = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < columns_.size(); ++i) object[columns_[i]] = toJson(row[i]);
    list.push_back(std::move(object));
  }
  return list;
}

void printJson(std::ostream& out, const nlohmann::ordered_json& value) {
  out << value.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace voxa::cli
