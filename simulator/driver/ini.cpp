#include "driver/ini.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <string_view>

namespace driver {

namespace {

std::optional<int> number(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::vector<int> numbers(std::string_view list) {
  std::vector<int> found;
  while (!list.empty()) {
    const std::size_t comma = list.find(',');
    if (const auto address = number(list.substr(0, comma))) found.push_back(*address);
    list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 1);
  }
  return found;
}

}  // namespace

std::string stationFile(const char* prefix, int station, const char* suffix) {
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), "%s%03d%s", prefix, station, suffix);
  return name.data();
}

std::optional<std::vector<std::string>> readLines(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) lines.push_back(std::move(line));
  }
  return lines;
}

std::optional<Ini> readIni(int station) {
  const auto lines = readLines(stationFile("S", station, ".ini"));
  if (!lines) return std::nullopt;
  Ini ini;
  for (const std::string_view line : *lines) {
    const std::string_view key = line.substr(0, 4);
    const std::string_view value = line.substr(key.size());
    if (key == "BDR:") ini.speed = number(value).value_or(0);
    if (key == "CFL:") ini.commandFile = value;
    if (key == "TEL:") ini.dialUp = !value.empty();
    if (key == "TER:") ini.controllers = numbers(value);
  }
  return ini;
}

}  // namespace driver
