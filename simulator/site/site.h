#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "site/contents.h"
#include "site/decide.h"
#include "site/failure.h"
#include "site/site_file.h"

namespace site {

/// The folder of this process's site: the one that the environment variable TLXP_SITE names, else "site" in
/// the current folder. Absolute.
[[nodiscard]] std::filesystem::path defaultFolder();

struct Swipe {
  int station = 0;
  int address = 0;
  int position = 1;  ///< of the reader on its controller, 1 to 4
  /// The card's code: up to eight characters, hexadecimal, with A to F as letters or as : to ?. When empty,
  /// the code that the controller holds for `cardNumber`.
  std::string code = {};
  int cardNumber = 0;
  std::optional<std::string> pin =
      {};  ///< four digits that were keyed in; none: the reader does not ask for them
  std::optional<Moment> moment = {};  ///< none: the time of the controller's clock
};

struct SwipeResult {
  Outcome outcome = Outcome::unknownCard;
  std::string typeCode;           ///< the transaction's two-digit code
  std::optional<int> cardNumber;  ///< none for an unknown card
  std::string reason;             ///< why it was not granted, for a person; empty when it was granted
  std::string record;             ///< the transaction as the driver dumps it
};

/// The simulated controllers of one folder, for those who handle them: they set them up, look into them,
/// break them and present cards. The driver's side of these controllers is the library TLXP32. Every
/// operation is one transaction and safe beside other processes. Whatever goes wrong raises Failure, and then
/// nothing has changed. To name a controller that the site does not have is a failure.
class Site {
 public:
  /// Opens nothing yet. A folder without a site file is a site without controllers.
  explicit Site(std::filesystem::path folder = defaultFolder());

  /// Adds a controller; the first one creates the folder. Raises Failure for an address in use and for a
  /// value out of its range.
  void addController(const ControllerInfo& info);
  /// Removes the controller and all that it holds.
  void removeController(int station, int address);
  /// Puts a new controller in the place of this one: it holds nothing, and its clock was never set. Type,
  /// speed, capacity and faults stay.
  void replace(int station, int address);
  /// All controllers, ordered by station and address.
  [[nodiscard]] std::vector<ControllerInfo> list();
  [[nodiscard]] Snapshot snapshot(int station, int address);

  /// 4800, 9600, 19200 or 38400 bit/s.
  void setSpeed(int station, int address, int speed);
  /// offset: seconds ahead of the PC clock; none: as if the clock was never set.
  void setClock(int station, int address, std::optional<std::int64_t> offset);
  /// Replaces all faults of the controller.
  void setFaults(int station, int address, const Faults& faults);
  void clearFaults(int station, int address) { setFaults(station, address, {}); }
  /// Forgets the lines that were received so far. What they have set stays.
  void clearReceived(int station, int address);

  /// Presents a card. The controller decides alone, so the line's faults do not matter, and records the
  /// transaction. Raises Failure for a position, code, personal code or moment that is not possible, and for
  /// a card number without a code that the controller does not hold.
  SwipeResult swipe(const Swipe& swipe);

  /// Whether the driver's last call for the station's line connected it.
  [[nodiscard]] bool connected(int station);

 private:
  SiteFile file_;
};

}  // namespace site
