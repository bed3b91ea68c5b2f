#include "driver/result_file.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "driver/ini.h"
#include "site/failure.h"
#include "site/private_file.h"
#include "site/results.h"

namespace driver {

void ResultFile::status(int address, char character) {
  if (address >= 1 && address <= static_cast<int>(addresses)) {
    statuses_[static_cast<std::size_t>(address) - 1] = character;
  }
}

void ResultFile::answered(const site::Controller& controller) {
  status(controller.info.address, '1');
  const site::Moment clock = controller.clock();
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "DATE%02d  %02d%02d%02d%02d%02d", controller.info.address,
                clock.hour, clock.minute, clock.date.day, clock.date.month, clock.date.year % 100);
  std::string line = text.data();
  if (controller.faults.resultFile == site::ResultFileFault::garbage) {
    status(controller.info.address, '~');
    for (std::size_t i = 0; i < line.size(); ++i) line[i] = static_cast<char>(0x80 + (i * 37 + 11) % 0x80);
  }
  const bool ends = controller.faults.resultFile == site::ResultFileFault::truncated;
  if (!truncated_) dates_ += ends ? line.substr(0, line.size() / 2) : line + "\r\n";
  truncated_ = truncated_ || ends;
}

void ResultFile::failed(int address, std::int16_t result) {
  switch (result) {
    case site::result::unknownController:
      return status(address, '2');
    case site::result::noAnswer:
    case site::result::garbled:
    case site::result::refused:
    case site::result::cutOff:
      return status(address, static_cast<char>('0' + result));
    default:
      return status(address, '6');
  }
}

void ResultFile::write(int station) const {
  const std::filesystem::path name = stationFile("RS", station, ".OUT");
  const std::filesystem::path whole = stationFile("RS", station, ".TMP");
  site::makePrivate(whole);
  std::ofstream stream(whole, std::ios::binary | std::ios::trunc);
  stream << statuses_ << "\r\n" << dates_;
  stream.close();
  std::error_code error;
  if (stream) std::filesystem::rename(whole, name, error);
  if (!stream || error) {
    std::error_code ignored;
    std::filesystem::remove(whole, ignored);
    throw site::Failure("The station result file " + name.string() + " cannot be written.");
  }
}

}  // namespace driver
