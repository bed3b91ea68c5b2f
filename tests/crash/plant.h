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

/// An installation with its simulated controllers, which are in a folder of their own: what befalls the disk
/// of the one does not befall the others. And what is known of both before an operation that may be killed.
class Plant {
 public:
  /// program: the command "voxa". scratch: an empty folder.
  Plant(fs::path program, fs::path scratch, std::uint64_t seed);

  /// Everything as it was built, and nothing remembered.
  void renew();
  /// Notes what the operation finds.
  void remember();
  void clearFaults() const;  ///< of the controllers
  /// Runs statements in the main database.
  void change(const std::vector<std::string>& statements) const;

  /// For a child process: becomes the command with those arguments.
  [[nodiscard]] int become(std::vector<std::string> arguments) const;
  Ended run(const std::function<int()>& work, const Fate& fate) const;

  /// A random number from 0 to n - 1.
  int below(int n) { return static_cast<int>(random() % static_cast<std::uint64_t>(n)); }

  std::mt19937_64 random;
  fs::path folder;  ///< the installation
  fs::path site;    ///< the controllers

  std::vector<std::string> recorded;  ///< data of the transactions that the controllers recorded, each once
  int batchFirst = 0;                 ///< first number of the block of cards to be created

  std::map<std::string, int> journalBefore;   ///< rows by data
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
