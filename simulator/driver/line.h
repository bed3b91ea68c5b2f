#pragma once

#include <cstdint>
#include <functional>

#include "driver/ini.h"
#include "site/controllers.h"

namespace driver {

/// One station's line for the time of one driver call: carries the call to the controllers it is meant for
/// and brings back the result (site/results.h).
///
/// Addresses: 41 to 56 controller 1 to 16; 0 each controller the ini file lists, in turn, all of them
/// whatever fails, the first failure the result; 95 all controllers of the line at once, which nobody
/// acknowledges.
class Line {
 public:
  static constexpr int each = 0;
  static constexpr int broadcast = 95;

  Line(site::Storage& storage, int station, const Ini& ini)
      : storage_(storage), station_(station), ini_(ini) {}

  /// The same step for every operation: `perform` acts on a controller that takes the call, `refused` on one
  /// that heard it and refuses, `failed` learns of each address that was asked in vain.
  struct Operation {
    std::function<std::int16_t(site::Controller&)> perform;
    std::function<void(site::Controller&)> refused = {};
    std::function<void(int address, std::int16_t result)> failed = {};
  };
  std::int16_t send(int address, const Operation& operation);

 private:
  std::int16_t ask(int address, const Operation& operation);
  std::int16_t reach(site::Controller& controller, const Operation& operation);

  site::Storage& storage_;
  int station_;
  const Ini& ini_;
};

}  // namespace driver
