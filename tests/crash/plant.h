#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "crash/child.h"

namespace voxa::crash {

namespace fs = std::filesystem;

/// An installation with its simulated controllers, and what is known of both before an operation that may be
/// killed. The controllers have a folder of their own, so what happens to the disk of the installation does
/// not happen to them.
class Plant {
 public:
  /// program: the command "voxa". scratch: an empty folder.
  Plant(fs::path program, fs::path scratch, std::uint64_t seed);

  /// Makes everything as it was built. Nothing is remembered.
  void renew();
  /// Notes the state before an operation.
  void remember();
  void clearFaults() const;  ///< on all controllers
  /// Runs statements in the main database.
  void change(const std::vector<std::string>& statements) const;

  /// Called in a child process, which becomes the command with those arguments.
  [[nodiscard]] int become(std::vector<std::string> arguments) const;
  Ended run(const std::function<int()>& work, const Fate& fate) const;

  /// A random number from 0 to n - 1.
  int below(int n) { return static_cast<int>(random() % static_cast<std::uint64_t>(n)); }

  std::mt19937_64 random;
  fs::path folder;  ///< the installation
  fs::path site;    ///< the controllers

  std::vector<std::string> recorded;  ///< data of the transactions that the controllers recorded, each once
  int batchFirst = 0;                 ///< first number of the block of cards to be created

  std::map<std::string, int> journalBefore;   ///< rows, by their data
  std::set<std::string> onControllersBefore;  ///< data of transactions
  std::string mainBefore;                     ///< the file's bytes

  static constexpr int batchCards = 40;

 private:
  void build() const;

  fs::path program_;
  fs::path scratch_;
};

[[nodiscard]] std::string bytesOf(const fs::path& file);

}  // namespace voxa::crash
