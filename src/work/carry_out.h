#pragma once

#include <string>
#include <vector>

#include "controllers/planner.h"
#include "platform/observer.h"
#include "work/report.h"

namespace voxa {

class Installation;

/// Some of the controllers: those of a station, the one of a reader, or all with neither. Also where the line
/// is not in use. A Refusal when there is no such station or reader.
[[nodiscard]] std::optional<std::set<ControllerPlace>> placesOf(Installation& installation,
                                                                const std::string& station,
                                                                const std::string& reader);

/// How a plan is carried out.
struct CarryOut {
  PlanScope scope = {};
  bool dial = false;  ///< stations with a telephone number that have something to get are called, and hung up
  /// The controllers are told daily programs in the form of this call, with two intervals a day or four, also
  /// when they were told the other one before.
  bool changeIntervals = false;
};

/// What became of a controller.
struct CarriedOut {
  ControllerPlace place;
  std::string name;                  ///< "Local Controller 3  -  Front door"
  Outcome outcome = Outcome::done;   ///< unchanged: it missed nothing
  std::string reason = {};           ///< why not all was sent, in words
  std::size_t sent = 0;              ///< things that it has taken
  std::vector<std::string> refused;  ///< things that it has not, each with what it said
  std::vector<PlanItem> missing;     ///< what it misses now
  std::vector<LeftOut> leftOut;      ///< rows that cannot be right there
};
struct CarriedOutPlan {
  std::vector<CarriedOut> controllers;  ///< by place: all in the scope
  std::vector<LeftOut> leftOut;         ///< cards that cannot be right
  std::vector<Notice> notices;
  bool broken = false;  ///< it failed as a whole

  [[nodiscard]] bool isComplete() const;  ///< no controller misses anything, and no row is left out
};

/// Brings the controllers to what the rows say, as far as they can be reached: what each of them misses, in
/// the order of the plan. Each by itself: one that does not answer, refuses a line or is on a line that is
/// not in use delays no other. Nobody is asked. Several lines go in one command file; when such a file fails
/// they go one by one, so that one that is refused keeps none of its neighbours back, and the doors of its
/// card stay shut.
///
/// Marks of rows are cleared where every controller holds the row. While communications are inhibited
/// nothing is sent, and the plan stays. Killed at any instant and called again it goes on.
///
/// It has the lines from the plan to its end: what another process sent in between could be of other rows.
///
/// A Refusal when there is no ledger, when the controllers were told daily programs of another number of
/// intervals a day, and within a transaction. `err::permissionDenied` when another process has the lines.
[[nodiscard]] CarriedOutPlan carryOut(Installation& installation, const CarryOut& how,
                                      Observer* observer = nullptr);

/// What each controller in the scope misses, without sending anything. Refuses as carryOut does.
struct PlannedController {
  ControllerPlan plan;
  std::string name;     ///< of the controller, for a person
  std::string station;  ///< name of its station; "" when that has no row any more
  bool inUse = false;   ///< its line
  bool dialUp = false;  ///< its line has a telephone number
};
struct WholePlan {
  std::vector<PlannedController> controllers;  ///< by place
  std::vector<LeftOut> leftOut;                ///< cards that cannot be right
  std::set<std::int16_t> groupsLeftOut;        ///< access groups whose cards cannot be sent everywhere
  std::set<std::int32_t> creditsOnTheirWay;    ///< cards whose marked credit is being given
};
/// Refuses as carryOut does when the controllers were told daily programs of another number of intervals.
void requireIntervals(Installation& installation);
[[nodiscard]] WholePlan planAll(Installation& installation, const PlanScope& scope);

}  // namespace voxa
