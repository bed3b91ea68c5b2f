#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "site/site.h"

/// Calls an operation of the real shared library, which is loaded by its path.
std::int16_t driverCall(const char* operation, int station, int address);
std::int16_t driverCall(const char* operation, int station);

void writeFile(const std::filesystem::path& file, const std::string& text);
std::string readFile(const std::filesystem::path& file);

/// Each test has a folder of its own as the current folder, with the site in it. The station is 1 unless a
/// test says otherwise.
class SimulatorTest : public testing::Test {
 public:
  ~SimulatorTest() override;

 protected:
  SimulatorTest();

  void ini(const std::string& ter, int speed = 4800, int station = 1);
  /// Adds the controller, and writes the ini file, which lists the addresses 1 to this one.
  void add(int address, const std::string& type = "QSX3", int capacity = 3000);
  /// Writes the command file and sends it.
  std::int16_t send(const std::vector<std::string>& lines, int address = 41);
  /// Sends one line to controller 1. Returns why the line was not applied; empty when it was.
  std::string reason(const std::string& line);
  site::Snapshot look(int address = 1) { return site_.snapshot(1, address); }
  /// Adds unknown-card records with the codes 00000001, 00000002 … to the controller's memory.
  void fill(int count, int address = 1);

  site::Site site_;
  std::filesystem::path folder_;

 private:
  std::filesystem::path before_;
};
