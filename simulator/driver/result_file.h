#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "site/controllers.h"

namespace driver {

/// The station result file. Its first line has one status character for each controller address 1 to 16. Then
/// comes one date line for each controller that answered. Lines end with CR LF.
///   status: "1" answered, "2" no answer, "3" noise, "4" refused, "5" cut off, "6" another failure,
///           "X" not asked
///   date line: "DATE" address2 blank2 hhmmddmmyy
class ResultFile {
 public:
  void answered(const site::Controller& controller);
  void failed(int address, std::int16_t result);
  /// Replaces the file of the station in the current folder, whole or not at all; raises site::Failure.
  void write(int station) const;

 private:
  static constexpr std::size_t addresses = 16;
  void status(int address, char character);

  std::string statuses_ = std::string(addresses, 'X');
  std::string dates_;
  bool truncated_ = false;  // the file ends here; later lines are not written
};

}  // namespace driver
