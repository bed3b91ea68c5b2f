#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace driver {

/// What the driver needs from a station's ini file. Its lines are "KEY:value"; other lines are ignored.
struct Ini {
  int speed = 4800;              ///< BDR, the line's speed in bit/s
  std::string commandFile;       ///< CFL, empty when it names none
  bool dialUp = false;           ///< TEL names a telephone number
  std::vector<int> controllers;  ///< TER, the addresses that a call to each controller asks
};

/// Reads "S" + three-digit station + ".ini" in the current folder; none when there is no such file.
[[nodiscard]] std::optional<Ini> readIni(int station);

/// The lines of a text file, without their ends and without empty lines; none when there is no such file.
[[nodiscard]] std::optional<std::vector<std::string>> readLines(const std::filesystem::path& file);

/// `prefix` + three-digit station + `suffix`.
[[nodiscard]] std::string stationFile(const char* prefix, int station, const char* suffix);

}  // namespace driver
