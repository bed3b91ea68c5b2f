#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "access/card_doors.h"

namespace voxa {

class Installation;

// Access groups as a person looks at them.

/// A group, with what its cards open.
struct GroupRow {
  struct Door {
    DoorSide side;
    std::string program;  ///< name of the weekly program, its number when there is none
  };
  std::int16_t id = 0;
  std::string name;
  std::int32_t cards = 0;          ///< how many are not deleted
  std::vector<Door> doors;         ///< as its cards meet them, by controller and position
  std::vector<std::string> lifts;  ///< names of the lift outputs that they may use
  bool toSend = false;             ///< whether a controller has yet to be told of a change
};
/// By number. door: name of a reader; only the groups that are granted it, or open it as the other side of a
/// door. A Refusal when there is no such reader.
[[nodiscard]] std::vector<GroupRow> listGroups(Installation& installation, const std::string& door = "");
/// By its name or number; a Refusal when there is none.
[[nodiscard]] GroupRow findGroup(Installation& installation, const std::string& nameOrNumber);

/// "Front door (Office)", "Back door (Office, the other side)", "Side door (stays shut)".
[[nodiscard]] std::string doorText(const GroupRow::Door& door);
/// What cards open, or use, that go from one group into another, and did not under that program before:
/// "Front door (Office)", "lift Top floor".
[[nodiscard]] std::vector<std::string> gainsOf(const GroupRow& from, const GroupRow& to);
/// The names of readers that a group opens as it is, and kept shut as it was.
[[nodiscard]] std::vector<std::string> openedSince(const GroupRow& before, const GroupRow& now);

/// What the doors of a group do on one controller that its links do not say.
struct DoorsBesideLinks {
  std::string shut;       ///< granted under a second program: "access group ... stays shut", or ""
  std::string otherSide;  ///< not granted, but open with their other side: "... opens too ...", or ""
};
/// Controller by controller.
[[nodiscard]] std::vector<DoorsBesideLinks> doorsBesideLinks(Database& database, std::int16_t group);

}  // namespace voxa
