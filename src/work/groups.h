#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "work/group_list.h"

namespace voxa {

class Installation;

// Changes of access groups and of the doors that their cards open. A group or reader is named as a person
// does it: by its name, a group by its number too. A Refusal says what is not as it has to be, and nothing is
// changed then.

/// Adds a group, which opens no door yet; its number.
std::int16_t addGroup(Installation& installation, const std::string& name);
/// Adds a group that opens the doors of another one, by the same programs, and uses its lift outputs. It has
/// no cards. Its number.
std::int16_t copyGroup(Installation& installation, const std::string& group, const std::string& name);
void renameGroup(Installation& installation, const std::string& group, const std::string& name);

/// Lets the group's cards open the readers' doors by a weekly program of family C, named by name or number,
/// in place of the ones they may have; marks the links, the group and its cards. All of the doors or none.
/// What is not as the links say afterwards.
std::vector<DoorsBesideLinks> grantDoors(Installation& installation, const std::string& group,
                                         const std::vector<std::string>& readers, const std::string& program);
inline std::vector<DoorsBesideLinks> grantDoor(Installation& installation, const std::string& group,
                                               const std::string& reader, const std::string& program) {
  return grantDoors(installation, group, {reader}, program);
}

/// Takes the readers' doors away from the group's cards, all of them or none. A controller that loses its
/// last door of the group erases the cards first, and has to answer (ForgetCards). Elsewhere the next
/// download shuts the doors: returned are those that are open to cards of the group until then.
std::vector<std::string> revokeDoors(Installation& installation, const std::string& group,
                                     const std::vector<std::string>& readers);

/// What became of a group that was deleted.
struct DeletedGroup {
  GroupRow group;                  ///< as it was
  std::string movedTo;             ///< name of the group that its cards are in; "" when it had none
  std::vector<std::string> gains;  ///< what these open now and did not before (gainsOf)
};
/// Deletes a group and moves its cards into another one, marked to be sent. moveTo: "" when it is to have no
/// cards. Controllers that the cards lose erase them first, and have to answer (ForgetCards). The default
/// group stays.
DeletedGroup deleteGroup(Installation& installation, const std::string& group,
                         const std::string& moveTo = "");

}  // namespace voxa
