#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "comm/com_types.h"
#include "lines/card.h"

namespace voxa {

class Database;

/// A door that an access group grants, on its controller.
struct GrantedDoor {
  std::int16_t position = 0;  ///< the reader's place on the controller, 1 to 4
  std::int16_t weeklyProgram = 0;
  std::int32_t reader = 0;
  bool byProgramOfCards = true;  ///< the link names a weekly program, of family C
};

/// The door of a controller that a reader's position belongs to, 1 (positions 1 and 3, its two sides) or 2 (2
/// and 4); 0 for a position that no controller has.
[[nodiscard]] int doorAt(std::int16_t position);

/// A controller with doors that an access group grants.
/// Its address is 1 to 16, unless the reader's row is wrong.
struct GrantedController : ControllerPlace {
  std::string stationName;
  bool active = false;  ///< the station
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
/// Those of every access group, by group.
[[nodiscard]] std::map<std::int16_t, std::vector<GrantedController>> controllersOfGroups(Database& database);

/// Why the controller cannot be told of the group's cards, naming the reader and the group; "" when it can.
/// An address that is none of a controller's would reach the whole line; a link without a program of family C
/// would be sent as "always", or as the program of that number in the other family.
[[nodiscard]] std::string faultOf(Database& database, std::int16_t accessGroupId,
                                  const GrantedController& controller);

/// A reader of a controller as a group's cards meet it. Positions 1 and 3, 2 and 4 are the two sides of one
/// door, which the controller opens or keeps shut as a whole.
struct DoorSide {
  enum class Access : std::uint8_t {
    opens,      ///< as it is granted
    otherSide,  ///< not granted, but the other side is: it opens too
    shut        ///< granted, but the controller keeps it shut
  };
  std::string reader;
  Access access = Access::opens;
  std::int16_t weeklyProgram = 0;  ///< of the side that is granted
};
/// Those that are granted or open, by position.
[[nodiscard]] std::vector<DoorSide> sidesOf(Database& database, std::int16_t accessGroupId,
                                            const GrantedController& controller);
/// "access group Staff, Local Controller 1: Side stays shut", of a controller with two programs.
[[nodiscard]] std::string shutSides(Database& database, std::int16_t accessGroupId,
                                    const GrantedController& controller);
/// "access group Staff, Local Controller 1: Front out opens too, the other side of a granted door"; ""
/// without any.
[[nodiscard]] std::string openOtherSides(Database& database, std::int16_t accessGroupId,
                                         const GrantedController& controller);

/// The lift outputs that a cardholder's group may use on a controller.
[[nodiscard]] std::vector<std::int16_t> liftOutputs(Database& database, std::int32_t cardholderId,
                                                    const GrantedController& controller);
/// Those of every access group, or of one, and controller.
using LiftRights = std::map<std::pair<std::int16_t, ControllerPlace>, std::vector<std::int16_t>>;
[[nodiscard]] LiftRights liftRights(Database& database, std::optional<std::int16_t> onlyGroup = {});

}  // namespace voxa
