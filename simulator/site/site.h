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

/// Where the sites of this process are: the folder the environment variable TLXP_SITE names, else "site" in
/// the current folder. Absolute.
[[nodiscard]] std::filesystem::path defaultFolder();

struct Swipe {
  int station = 0;
  int address = 0;
  int position = 1;  ///< of the reader on its controller, 1 to 4
  /// The card's code: up to eight characters, hexadecimal A to F as letters or as : to ?. Empty: the code the
  /// controller holds for `cardNumber`.
  std::string code = {};
  int cardNumber = 0;
  std::optional<std::string> pin = {};  ///< four digits keyed in; none: the reader asks for none
  std::optional<Moment> moment = {};    ///< none: the controller's clock
};

struct SwipeResult {
  Outcome outcome = Outcome::unknownCard;
  std::string typeCode;           ///< the transaction's two-digit code
  std::optional<int> cardNumber;  ///< none for an unknown card
  std::string reason;             ///< why it was not granted, for a person; empty when it was
  std::string record;             ///< the transaction as the driver dumps it
};

/// The simulated controllers of one folder, as whoever stands before them handles them: sets them up, looks
/// into them, breaks them, presents cards. The controller driver's side of them is the library TLXP32. Every
/// operation is one transaction, safe beside other processes; whatever goes wrong raises Failure, and then
/// nothing has changed. Where a controller is named, one the site does not have is a failure.
class Site {
 public:
  /// Opens nothing yet; a folder without a site is a site without controllers.
  explicit Site(std::filesystem::path folder = defaultFolder());

  /// Creates the folder with the first controller. Refuses an address in use and values out of their range.
  void addController(const ControllerInfo& info);
  /// Forgets the controller with all it holds.
  void removeController(int station, int address);
  /// In the order of station and address.
  [[nodiscard]] std::vector<ControllerInfo> list();
  [[nodiscard]] Snapshot snapshot(int station, int address);

  /// 4800, 9600, 19200 or 38400 bit/s.
  void setSpeed(int station, int address, int speed);
  /// Seconds ahead of the PC clock; none: as if it were never set.
  void setClock(int station, int address, std::optional<std::int64_t> offset);
  /// Replaces all faults of the controller.
  void setFaults(int station, int address, const Faults& faults);
  void clearFaults(int station, int address) { setFaults(station, address, {}); }
  /// Forgets the lines received so far, what they set stays.
  void clearReceived(int station, int address);

  /// Presents a card. The controller decides alone, so it does so whatever the line's faults, and records the
  /// transaction. Refuses a position, code, personal code or moment that cannot be, and a card number without
  /// code that the controller does not hold.
  SwipeResult swipe(const Swipe& swipe);

  /// Whether the driver's last word on the station's line was to connect it.
  [[nodiscard]] bool connected(int station);

 private:
  SiteFile file_;
};

}  // namespace site
