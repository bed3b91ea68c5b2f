#pragma once

#include <cstdint>
#include <functional>

#include "driver/ini.h"
#include "site/controllers.h"

namespace driver {

/// One station's line during one driver call. It takes the call to the controllers that it is meant for, and
/// brings back the result (site/results.h).
///
/// Addresses: 41 to 56 are the controllers 1 to 16. 0 is each controller that the ini file lists, one after
/// the other; all are asked even after a failure, and the first failure is the result. 95 is all controllers
/// of the line at once; none of them acknowledges.
///
/// A dial-up line reaches its controllers from CONNECT to DISNNECT. Without that no address has an answer,
/// and no controller knows of the call.
class Line {
 public:
  static constexpr int each = 0;
  static constexpr int broadcast = 95;

  Line(site::Storage& storage, int station, const Ini& ini)
      : storage_(storage),
        station_(station),
        ini_(ini),
        open_(!ini.dialUp || site::lineConnected(storage, station)) {}

  /// What the steps of one operation do. `perform` acts on a controller that takes the call, `refused` on one
  /// that heard the call and refuses it. `failed` is told each address that gave no success.
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
  bool open_;  // a direct line always is
};

}  // namespace driver
