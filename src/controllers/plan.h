#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "controllers/image.h"
#include "controllers/sent_line.h"

namespace voxa {

/// What a plan does at a controller, in this order, so that no card is ever more open in between than before
/// or after: a card of which several things change is shut first, and its doors are opened when all of them
/// are there.
enum class PlanPhase : std::uint8_t { shut, erase, times, cards, doors };
inline constexpr std::size_t planPhases = 5;

enum class PlanReason : std::uint8_t {
  newController,  ///< nothing was ever sent to it
  notSent,        ///< it does not have it yet
  changed,        ///< it has it otherwise
  oldCard,        ///< it has it with another code, and opens to that one
  answerLost,     ///< it was sent, and nobody knows whether it arrived
  unknown,        ///< nothing is known of it
  creditMarked,   ///< the credit is marked to be sent
  liftTaken,      ///< it has a lift output more, which no line takes away
  timesChange,    ///< more than one of the programs and holidays that decide changes
  blocked,        ///< the card is blocked or expired, and its row cannot be right otherwise
  deleted,        ///< the card is deleted, or the holiday
  noCode,         ///< the card has no code any more
  leftGroup,      ///< the card's group does not open its doors
  requested       ///< it has it; all is sent again
};
/// In words, behind the name of a thing: "left the group".
[[nodiscard]] const char* textOf(PlanReason reason);

/// What is to be done for one thing at one controller.
struct PlanItem {
  enum class Action : std::uint8_t { erase, send, sendAgain, shutMeanwhile };

  ThingKind kind = ThingKind::card;
  std::int32_t number = 0;  ///< as SentLine has it
  Action action = Action::send;
  PlanReason reason = PlanReason::changed;
  bool creditAnew = false;    ///< the card is erased and sent again, so that its credit starts anew
  bool creditMarked = false;  ///< the row's credit is marked, and goes with it
  std::int16_t program = 0;   ///< of a card: the weekly program under which it will open
  /// Programs and holidays that are not to be sent while the card, as it is now, could open: with each of
  /// them alone times would be in force that no row has.
  std::set<std::pair<ThingKind, std::int32_t>> keepsBack;
  std::array<std::vector<std::string>, planPhases> lines;  ///< by PlanPhase

  [[nodiscard]] std::vector<std::string>& of(PlanPhase phase) {
    return lines.at(static_cast<std::size_t>(phase));
  }
  [[nodiscard]] const std::vector<std::string>& of(PlanPhase phase) const {
    return lines.at(static_cast<std::size_t>(phase));
  }
};
/// How many things a controller misses: not the cards that are right, and are only shut meanwhile.
[[nodiscard]] std::size_t missingOf(const std::vector<PlanItem>& items);
/// "erase", "send", "send again", "shut meanwhile".
[[nodiscard]] const char* textOf(PlanItem::Action action);
/// "card", "daily program", "weekly program C", ...
[[nodiscard]] const char* kindName(ThingKind kind);
/// As a person names a thing: "card 12", "weekly program C 3", "badge format of reader 2".
[[nodiscard]] std::string nameOf(ThingKind kind, std::int32_t number);

/// What a controller misses. Empty when it holds what the rows want, as far as they can be right.
struct ControllerPlan {
  ControllerPlace place;
  std::string type;
  std::vector<PlanItem> items;              ///< by phase and number
  std::vector<LeftOut> leftOut;             ///< rows, or the whole controller, that cannot be right
  std::vector<std::int16_t> groupsLeftOut;  ///< access groups that the controller cannot be told of
  bool hasNoForm = false;                   ///< its readers name two types: it can be told nothing
  /// Weekly programs of family C that cards cannot open under until `things` have been taken, each with
  /// those.
  std::map<std::int16_t, std::set<std::pair<ThingKind, std::int32_t>>> needs;

  [[nodiscard]] bool isEmpty() const { return items.empty() && leftOut.empty(); }
};

}  // namespace voxa
