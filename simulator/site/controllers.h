#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "site/contents.h"

namespace site {

class Storage;
class Row;

/// The transaction memory as record numbers. It holds the records from first to next - 1. read is the next
/// record to read.
struct Ring {
  std::int64_t first = 0;
  std::int64_t next = 0;
  std::int64_t read = 0;
  std::int64_t overflows = 0;
  bool overflowed = false;  ///< since the last reset of the read pointer
};

/// A controller's own row.
struct Controller {
  std::int64_t id = 0;
  ControllerInfo info;
  std::optional<std::int64_t> clockOffset;
  Ring ring;
  Faults faults;

  /// The controller's clock. One that was never set stands at 1 January 1980.
  [[nodiscard]] Moment clock() const;
};

[[nodiscard]] std::optional<Controller> findController(Storage& storage, int station, int address);
/// The controllers of a station, or of every station for 0, ordered by station and address.
[[nodiscard]] std::vector<Controller> controllersOf(Storage& storage, int station);

/// Whether the driver's last call for the station's line connected it.
[[nodiscard]] bool lineConnected(Storage& storage, int station);
void storeLineConnected(Storage& storage, int station, bool connected);

void storeSpeed(Storage& storage, Controller& controller, int speed);
void storeClock(Storage& storage, Controller& controller, std::optional<std::int64_t> offset);
void storeRing(Storage& storage, const Controller& controller);
void storeFaults(Storage& storage, const Controller& controller);

/// How a controller takes a call from a line that runs at `lineSpeed`. When it heard the call, the call is
/// counted.
struct Reception {
  bool heard = false;       ///< when false, it knows nothing of the call
  bool willing = false;     ///< it heard the call and will do what it says
  std::int16_t result = 0;  ///< what the caller gets when the controller is not willing
};
Reception call(Storage& storage, Controller& controller, int lineSpeed);

/// A willing controller takes the lines of a command file. Each is kept as received and applied, unless a
/// fault is in the way. A change of the line speed counts from the end of the file on. Returns what the
/// caller gets: 100, 2 when the answer was lost, 5 when the line broke. Nobody waits for an answer that is
/// not `acknowledged`, so none is lost.
std::int16_t receive(Storage& storage, Controller& controller, const std::vector<std::string>& lines,
                     bool acknowledged);
/// A controller that refuses a command file keeps its lines as received.
void refuse(Storage& storage, Controller& controller, const std::vector<std::string>& lines);

}  // namespace site
