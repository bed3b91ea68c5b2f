#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "comm/com_types.h"

namespace voxa::simulation {

namespace fs = std::filesystem;

/// Random numbers that are the same on every machine.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : random_(seed) {}

  /// 0 to n - 1.
  int below(int n) { return static_cast<int>(random_() % static_cast<std::uint64_t>(n)); }
  int from(int first, int last) { return first + below(last - first + 1); }
  bool once(int in) { return below(in) == 0; }
  template <typename Value>
  const Value& of(const std::vector<Value>& values) {
    return values.at(static_cast<std::size_t>(below(static_cast<int>(values.size()))));
  }

 private:
  std::mt19937_64 random_;
};

struct Line {
  std::int16_t station = 0;
  bool dialled = false;  ///< a dial-up line
};

/// As a person reads a place: "1/2".
[[nodiscard]] std::string nameOf(const ControllerPlace& place);

/// One random installation with its controllers, and what the simulation knows of them.
struct World {
  World(fs::path program, fs::path scratch, std::uint64_t seed);

  fs::path program;  ///< the command "voxa"
  fs::path folder;   ///< the installation
  fs::path site;     ///< the controllers
  Chance chance;

  std::vector<Line> lines;
  std::map<ControllerPlace, std::string> controllers;  ///< with their types
  /// Whether what the ledger assumes of a controller must be right, too. Not once its ledger was lost, or
  /// when the ledger takes it for another one than it is.
  std::map<ControllerPlace, bool> assumed;
  std::set<ControllerPlace> wrongType;  ///< controllers whose rows name the other type
  std::int64_t clockOffset = 0;         ///< seconds
  /// Nobody sends anything but plans, so that no card may ever open what no row allows.
  bool planned = false;

  static constexpr int greatestCard = 12;  ///< number
};

}  // namespace voxa::simulation
