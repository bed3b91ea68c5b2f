#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "platform/notice.h"
#include "platform/value.h"

namespace voxa {

class Installation;

/// A controller as a person sees it: one with readers, one that lost them, or one that is gone.
struct ControllerOverview {
  enum class State : std::uint8_t {
    inUse,
    notInUse,  ///< its line
    hungUp,    ///< its line has a telephone number, and is not in use
    retired    ///< its station is gone, or another one was put in its place
  };

  ControllerPlace place;
  std::string station;
  std::vector<std::string> readers;  ///< their names
  State state = State::inUse;
  Value answers;    ///< True or False; Null when nobody asked it
  Value clock;      ///< Null unless it answered
  Value deviation;  ///< of the clock, whole minutes ahead of the computer's; Null without a clock
  /// Its clock shows a time from before the ledger knew it: it was without power, or is another one.
  bool clockAtStart = false;
  std::int32_t cards = 0;   ///< that it certainly holds
  std::size_t missing = 0;  ///< things that it misses, or should not have
  std::size_t doubt = 0;    ///< things of which that is not known
  Value lastContact;        ///< when it acknowledged something last; Null: never
  DateTime since;           ///< from when on the ledger knows it
};
/// "in use", "not in use", "hung up", "retired".
[[nodiscard]] const char* textOf(ControllerOverview::State state);

struct ControllerOverviews {
  std::vector<ControllerOverview> controllers;  ///< by place; retired ones behind the others
  std::vector<Notice> notices;                  ///< of the test of the lines
};
/// Tests the lines in use, and looks at every controller. A Refusal when there is no ledger.
[[nodiscard]] ControllerOverviews overviewControllers(Installation& installation);

/// Another controller was put in place: nothing of what the one before held is there any more. The plan sends
/// it everything. usedElsewhere: it may hold any cards and programs; then it is told to erase each card
/// number that it is not to have. station: its name; address: as a person writes it. No process sends
/// meanwhile: what the controller before takes would count for the new one. A Refusal when there is no
/// controller; `err::permissionDenied` when another process has the lines.
void noteReplaced(Installation& installation, const std::string& station, const std::string& address,
                  bool usedElsewhere);

/// A controller whose clock is at its start.
struct SuspectController {
  ControllerPlace place;
  std::string name;
  Value clock;
  bool memoryEmpty = false;  ///< it has no transactions either: it was probably replaced
};
/// Those of the lines in use, as the last test found them. What is in their memory is not looked at. None
/// when there is no ledger.
[[nodiscard]] std::vector<SuspectController> controllersAtStart(Installation& installation);

struct ControllerCheck {
  std::vector<SuspectController> suspects;
  std::vector<std::string> silent;  ///< names of controllers that do not answer
  std::vector<Notice> notices;
};
/// Tests the lines in use, and looks into the transaction memory of those whose clock is at its start. What
/// is there stays there.
[[nodiscard]] ControllerCheck checkControllers(Installation& installation);

}  // namespace voxa
