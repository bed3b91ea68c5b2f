#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "access/card_doors.h"

namespace voxa {

class Installation;

// Access groups and the doors that their cards open. A group or reader is named as a person does it: by its
// name, a group by its number too. A Refusal says what is not as it has to be, and nothing is changed then.

/// Adds a group, which opens no door yet; its number.
std::int16_t addGroup(Installation& installation, const std::string& name);

/// A group of a list.
struct GroupRow {
  struct Door {
    DoorSide side;
    std::string program;  ///< name of the weekly program, its number when there is none
  };
  std::int16_t id = 0;
  std::string name;
  std::int32_t cards = 0;   ///< how many are not deleted
  std::vector<Door> doors;  ///< as its cards meet them, by controller and position
  bool toSend = false;      ///< whether a controller has yet to be told of a change
};
/// All groups by number.
[[nodiscard]] std::vector<GroupRow> listGroups(Installation& installation);

/// What the doors of a group do on one controller that its links do not say.
struct DoorsBesideLinks {
  std::string shut;       ///< granted under a second program: "access group ... stays shut", or ""
  std::string otherSide;  ///< not granted, but open with their other side: "... opens too ...", or ""
};
/// Lets the group's cards open the reader's door by a weekly program of family C, named by name or number, in
/// place of the one it may have; marks the link, the group and its cards. What is not as the links say
/// afterwards, controller by controller.
std::vector<DoorsBesideLinks> grantDoor(Installation& installation, const std::string& group,
                                        const std::string& reader, const std::string& program);

/// Takes the reader's door away from the group's cards. A controller that loses its last door of the group
/// erases the cards first, and has to answer (ForgetCards). Otherwise the next download shuts the door.
void revokeDoor(Installation& installation, const std::string& group, const std::string& reader);

/// Deletes a group and moves its cards into another one, marked to be sent. moveTo: "" when it is to have no
/// cards. Controllers that the cards lose erase them first, and have to answer (ForgetCards). The default
/// group stays.
void deleteGroup(Installation& installation, const std::string& group, const std::string& moveTo = "");

}  // namespace voxa
