#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/alarms.h"
#include "work/door_change.h"

namespace voxa {

class Installation;

// The lift outputs of controllers, and the access groups that may use them. A Refusal says what is not as it
// has to be, and nothing is changed then.

/// A new lift output as a person writes it.
struct LiftTexts {
  std::string name;
  std::string station;  ///< name of its controller's station
  std::string address;  ///< of its controller on the line, 1 to 16
  std::string number;   ///< on the controller, 1 to 99: behind its command an output has two digits
};
/// Adds it; its number in the table.
std::int32_t addLift(Installation& installation, const LiftTexts& lift);

/// Changes a lift output. change: but for the type. Where cards lose it, by another place or number, their
/// controller erases them first (changeDoors). gone: DoorChange::gone.
ChangedDoors changeLift(Installation& installation, const std::string& lift, const AlarmTexts& change,
                        bool gone = false);
/// Deletes a lift output. moveTo: the output that its groups may use instead, "" when there are none; a
/// Refusal names them. Their cards lose it as with changeLift.
ChangedDoors deleteLift(Installation& installation, const std::string& lift, const std::string& moveTo = "",
                        bool gone = false);

/// A lift output of a list. Values as the table has them.
struct LiftRow {
  Value id, name, station, address, number;
  std::vector<std::string> groups;  ///< names of the access groups that may use it
};
[[nodiscard]] std::vector<LiftRow> listLifts(Installation& installation);
[[nodiscard]] LiftRow findLift(Installation& installation, const std::string& lift);

/// Lets a group's cards use a lift output; marks the group and its cards. group: its name or number. lift:
/// its name. False when the group opens no door of the lift's controller, which does not know its cards then.
/// What a group may use already changes nothing.
bool grantLift(Installation& installation, const std::string& group, const std::string& lift);

/// Takes a lift output away from a group's cards. Its controller erases them first, since a card's line only
/// ever adds outputs, and has to answer (ForgetCards); the next download gives them back.
void revokeLift(Installation& installation, const std::string& group, const std::string& lift);

}  // namespace voxa
