#include "simulator/simulator_test.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

void* entry(const char* operation) {
  static void* library = dlopen(TLXP32_PATH, RTLD_NOW | RTLD_LOCAL);
  void* found = library == nullptr ? nullptr : dlsym(library, operation);
  if (found == nullptr) throw std::runtime_error(std::string("no driver operation ") + operation);
  return found;
}

std::filesystem::path newFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "simulator-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  return name;
}

}  // namespace

std::int16_t driverCall(const char* operation, int station, int address) {
  using Function = std::int16_t (*)(std::int16_t, std::int16_t);
  return reinterpret_cast<Function>(entry(operation))(static_cast<std::int16_t>(station),
                                                      static_cast<std::int16_t>(address));
}

std::int16_t driverCall(const char* operation, int station) {
  using Function = std::int16_t (*)(std::int16_t);
  return reinterpret_cast<Function>(entry(operation))(static_cast<std::int16_t>(station));
}

void writeFile(const std::filesystem::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

std::string readFile(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

SimulatorTest::SimulatorTest()
    : site_("site"), folder_(newFolder()), before_(std::filesystem::current_path()) {
  unsetenv("TLXP_SITE");
  std::filesystem::current_path(folder_);
}

SimulatorTest::~SimulatorTest() {
  std::filesystem::current_path(before_);
  std::filesystem::remove_all(folder_);
}

void SimulatorTest::ini(const std::string& ter, int speed, int station) {
  std::string number = std::to_string(station);
  number.insert(0, 3 - number.size(), '0');
  writeFile("S" + number + ".ini", "NAM:Line\r\nCOM:1\r\nBDR:" + std::to_string(speed) +
                                       "\r\nCFL:COMMAND.TXT\r\nOUT:1500\r\nTMP:100\r\nOPT:2\r\n" +
                                       (ter.empty() ? "" : "TER:" + ter + "\r\n"));
}

void SimulatorTest::add(int address, const std::string& type, int capacity) {
  site_.addController({1, address, type, 4800, capacity});
  std::string ter = "1";
  for (int i = 2; i <= address; ++i) ter += "," + std::to_string(i);
  ini(ter);
}

std::int16_t SimulatorTest::send(const std::vector<std::string>& lines, int address) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  writeFile("COMMAND.TXT", text + "\r\n");
  return driverCall("SDCMD", 1, address);
}

std::string SimulatorTest::reason(const std::string& line) {
  EXPECT_EQ(send({line}), 100) << line;
  const auto received = look().received;
  EXPECT_FALSE(received.empty());
  if (received.empty()) return "nothing received";
  EXPECT_EQ(received.back().text, line);
  return received.back().reason;
}

void SimulatorTest::fill(int count, int address) {
  for (int i = 1; i <= count; ++i) {
    site::Swipe swipe{1, address};
    swipe.code = std::to_string(i);
    swipe.moment = site::Moment{{2002, 11, 15}, 10, 20};
    site_.swipe(swipe);
  }
}
