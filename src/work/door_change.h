#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "comm/com_types.h"

namespace voxa {

class Installation;

/// A change of rows after which access groups open other doors, or use other lift outputs, than before.
struct DoorChange {
  /// Changes the rows. It is called twice, the first time to see what it would change: that is taken back.
  std::function<void()> rows;
  std::set<std::int16_t> stations = {};  ///< whose file for the driver is written anew
  /// Readers that go from one place to another: from, to.
  std::vector<std::pair<ControllerPlace, ControllerPlace>> moves = {};
  /// The controllers that lose cards are gone for good: they are not asked to erase them. As long as their
  /// station is there the plan keeps that for them.
  bool gone = false;
};

struct ChangedDoors {
  bool erased = false;               ///< controllers have erased cards that lose their doors there
  bool newController = false;        ///< where no reader was before, or of another type than before
  std::vector<std::string> beside;   ///< what groups open now that their links do not say, or keep shut
  std::vector<std::string> keptFor;  ///< names of controllers that were gone, and are in the plan
};

/// Makes a change of doors. Controllers that lose cards of a group, or one of its lift outputs, erase these
/// first, and have to answer (ForgetCards); one that loses its last reader erases every card that it is known
/// to hold. Only one that has never acknowledged anything, and of which the ledger knows no card, need not
/// answer: there is none. Then the rows change in one transaction, the groups whose doors are others are
/// marked, and so are all programs and holidays where a controller is new. What `rows` raises comes through,
/// and nothing is changed then.
[[nodiscard]] ChangedDoors changeDoors(Installation& installation, const DoorChange& change);

}  // namespace voxa
