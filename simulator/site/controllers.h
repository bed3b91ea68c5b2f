#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "site/contents.h"

namespace site {

class Storage;
class Row;

/// The transaction memory as the run of record numbers it holds: first to next - 1, read the next one to
/// read.
struct Ring {
  std::int64_t first = 0;
  std::int64_t next = 0;
  std::int64_t read = 0;
  std::int64_t overflows = 0;
  bool overflowed = false;  ///< since the read pointer was last reset
};

/// A controller's own row.
struct Controller {
  std::int64_t id = 0;
  ControllerInfo info;
  std::optional<std::int64_t> clockOffset;
  Ring ring;
  Faults faults;

  /// Its clock; one that was never set stands at 1 January 1980.
  [[nodiscard]] Moment clock() const;
};

[[nodiscard]] std::optional<Controller> findController(Storage& storage, int station, int address);
/// Those of a station, or of every station for 0, in the order of station and address.
[[nodiscard]] std::vector<Controller> controllersOf(Storage& storage, int station);

void storeSpeed(Storage& storage, Controller& controller, int speed);
void storeClock(Storage& storage, Controller& controller, std::optional<std::int64_t> offset);
void storeRing(Storage& storage, const Controller& controller);
void storeFaults(Storage& storage, const Controller& controller);

/// How a controller takes a call that came over a line running at `lineSpeed`. Counts the call when it heard
/// it.
struct Reception {
  bool heard = false;       ///< otherwise it knows nothing of the call
  bool willing = false;     ///< it heard the call and does what it says
  std::int16_t result = 0;  ///< what the caller gets when it is not willing
};
Reception call(Storage& storage, Controller& controller, int lineSpeed);

/// Takes the lines of a command file: each is kept as received and, when the controller is willing, applied.
/// A change of the line speed holds from the end of the file on.
void receive(Storage& storage, Controller& controller, const std::vector<std::string>& lines, bool willing);

}  // namespace site
