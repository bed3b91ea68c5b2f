#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "access/card_record.h"

namespace voxa {

class Database;

/// A door that an access group grants, on its controller.
struct GrantedDoor {
  std::int16_t position = 0;  ///< the reader's place on the controller, 1 to 4
  std::int16_t weeklyProgram = 0;
};

/// A controller with doors that an access group grants.
struct GrantedController {
  std::int16_t station = 0;
  std::string stationName;
  bool active = false;  ///< the station
  std::int16_t address = 0;
  std::string type;
  std::vector<GrantedDoor> doors;  ///< by position

  /// What cards of the group may do here. A controller binds a card to one weekly program: that of its first
  /// door. A door whose readers are not all granted under that program stays shut, rather than open at hours
  /// that the group does not grant.
  [[nodiscard]] CardRights rights() const;
  /// Whether a door stays shut because the group grants it under another program.
  [[nodiscard]] bool twoPrograms() const;
};

/// The controllers of an access group by station and address.
[[nodiscard]] std::vector<GrantedController> controllersOf(Database& database, std::int16_t accessGroupId);

/// The lift outputs that a cardholder's group may use on a controller.
[[nodiscard]] std::vector<std::int16_t> liftOutputs(Database& database, std::int32_t cardholderId,
                                                    const GrantedController& controller);

}  // namespace voxa
