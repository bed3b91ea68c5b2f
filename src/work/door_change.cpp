#include "work/door_change.h"

#include <algorithm>
#include <map>
#include <optional>

#include "access/card_doors.h"
#include "comm/com.h"
#include "comm/station.h"
#include "controllers/ledger_view.h"
#include "files/conversions.h"
#include "files/line_span.h"
#include "platform/database/database.h"
#include "work/forget_cards.h"
#include "work/group_reach.h"
#include "work/installation.h"
#include "work/links.h"
#include "work/refusal.h"

namespace voxa {

namespace {

/// What the rows say at one moment.
struct Doors {
  std::map<std::int16_t, std::vector<ReachedController>> groups;
  std::map<ControllerPlace, std::set<std::string>> types;  // of the places with readers

  explicit Doors(Database& database) {
    const LiftRights lifts = liftRights(database);
    for (auto& [group, controllers] : controllersOfGroups(database)) {
      for (GrantedController& controller : controllers) {
        ReachedController& reached = groups[group].emplace_back();
        if (const auto found = lifts.find({group, controller}); found != lifts.end()) {
          reached.lifts.insert(found->second.begin(), found->second.end());
        }
        reached.controller = std::move(controller);
      }
    }
    const auto readers =
        database.openRecordset("select StationId, ControllerAddress, ControllerType from Readers");
    for (; !readers->eof(); readers->moveNext()) {
      const Value type = readers->get(2U);
      types[{nullToInt(readers->get(0U)), nullToInt(readers->get(1U))}].insert(type.isNull() ? ""
                                                                                             : type.toText());
    }
  }
};

bool same(const ReachedController& one, const ReachedController& other) {
  const auto sameDoor = [](const GrantedDoor& a, const GrantedDoor& b) {
    return a.position == b.position && a.weeklyProgram == b.weeklyProgram;
  };
  const GrantedController& a = one.controller;
  const GrantedController& b = other.controller;
  return a.station == b.station && a.address == b.address && a.type == b.type && one.lifts == other.lifts &&
         std::equal(a.doors.begin(), a.doors.end(), b.doors.begin(), b.doors.end(), sameDoor);
}

std::set<std::int16_t> changedGroups(const Doors& before, const Doors& after) {
  static const std::vector<ReachedController> nothing;
  const auto of = [](const Doors& doors, std::int16_t group) -> const std::vector<ReachedController>& {
    const auto found = doors.groups.find(group);
    return found == doors.groups.end() ? nothing : found->second;
  };
  std::set<std::int16_t> changed;
  for (const Doors* doors : {&before, &after}) {
    for (const auto& [group, reach] : doors->groups) {
      const auto& was = of(before, group);
      const auto& is = of(after, group);
      if (!std::equal(was.begin(), was.end(), is.begin(), is.end(), same)) changed.insert(group);
    }
  }
  return changed;
}

/// A controller as its station's row has it, whatever its readers are.
GrantedController controllerAt(Database& database, const ControllerPlace& place) {
  GrantedController controller;
  controller.station = place.station;
  controller.address = place.address;
  const auto station =
      database.openRecordset("parameters pId long; select Name, Active from Stations where Id = pId",
                             {{"pId", std::int32_t{place.station}}});
  if (station->eof()) return controller;
  controller.stationName = station->get("Name").toText();
  controller.active = station->get("Active").toBool();
  return controller;
}

class Change {
 public:
  Change(Installation& installation, const DoorChange& change)
      : installation_(installation), change_(change), before_(installation.database()), after_(tried()) {}

  ChangedDoors make() {
    erase();
    const std::set<std::int16_t> groups = changedGroups(before_, after_);
    const std::set<std::string> besideBefore = beside(groups);
    Transaction transaction(installation_.engine(), installation_.database());
    change_.rows();
    for (const std::int16_t group : groups) markGroup(installation_, group);
    for (const auto& [place, types] : after_.types) {
      const auto was = before_.types.find(place);
      result_.newController = result_.newController || was == before_.types.end() || was->second != types;
    }
    if (result_.newController) markProgramsForNewController(installation_);
    for (const std::int16_t station : change_.stations) installation_.Stations().createIniFile(station);
    transaction.commit();
    for (const auto& [from, to] : change_.moves) {
      if (!after_.types.contains(from) && !before_.types.contains(to)) {
        installation_.ledger().carryOver(from, to);
      }
    }
    for (const std::string& text : beside(groups)) {
      if (!besideBefore.contains(text)) result_.beside.push_back(text);
    }
    return std::move(result_);
  }

 private:
  Doors tried() const {
    const Transaction takenBack(installation_.engine(), installation_.database());
    change_.rows();
    return Doors(installation_.database());
  }

  void erase() {
    ForgetCards forget(installation_);
    for (const auto& [group, reach] : before_.groups) {
      const auto found = after_.groups.find(group);
      const auto lost =
          without(reach, found == after_.groups.end() ? std::vector<ReachedController>{} : found->second);
      if (lost.empty()) continue;
      const CardsOfGroup cards = cardsOf(installation_, group);
      for (const GrantedController& controller : lost) {
        for (const auto& numbers : {cards.live, cards.deleted}) eraseOn(forget, controller, numbers);
      }
    }
    for (const auto& [place, types] : before_.types) {
      if (after_.types.contains(place) || !isOfController(place.address)) continue;
      eraseOn(forget, controllerAt(installation_.database(), place), heldAt(place));
    }
    if (change_.gone) return;
    try {
      forget.send();
    } catch (const Refusal& refusal) {
      throw Refusal(std::string(refusal.what()) +
                    "\nIf one is gone for good, or never was there, say so with --gone.");
    }
  }

  void eraseOn(ForgetCards& forget, const GrantedController& controller,
               const std::vector<std::int32_t>& numbers) {
    if (numbers.empty() || !isOfController(controller.address) || isNowhere(controller)) return;
    if (change_.gone) {
      const std::string name = installation_.Com().getName(controller.station, controller.address);
      auto& kept = result_.keptFor;
      if (std::find(kept.begin(), kept.end(), name) == kept.end()) kept.push_back(name);
      return;
    }
    forget.on({controller}, numbers);
    result_.erased = !installation_.Com().inhibitCom;
  }

  /// The numbers of cards that the ledger does not know to be gone there.
  std::vector<std::int32_t> heldAt(const ControllerPlace& place) const {
    std::vector<std::int32_t> numbers;
    for (const auto& [number, card] : installation_.ledger().holdings(place).cards) {
      if (number > 0 && !card.part(CardField::code).is("")) numbers.push_back(number);
    }
    return numbers;
  }

  /// Whether nothing was ever acknowledged at a place, and nothing may have got there: it was mistyped, say.
  bool isNowhere(const ControllerPlace& place) const {
    bool known = true;
    (void)installation_.ledger().look([&](const LedgerView& ledger) {
      const LedgerController* controller = ledger.controllers().find(place);
      known = controller != nullptr && (controller->lastContact || !ledger.knowsNothingOf(place));
    });
    return !known;
  }

  std::set<std::string> beside(const std::set<std::int16_t>& groups) const {
    Database& database = installation_.database();
    std::set<std::string> texts;
    for (const std::int16_t group : groups) {
      for (const GrantedController& controller : controllersOf(database, group)) {
        if (controller.twoPrograms()) texts.insert(shutSides(database, group, controller));
        if (const std::string open = openOtherSides(database, group, controller); !open.empty()) {
          texts.insert(open);
        }
      }
    }
    return texts;
  }

  Installation& installation_;
  const DoorChange& change_;
  ChangedDoors result_;
  Doors before_, after_;
};

}  // namespace

ChangedDoors changeDoors(Installation& installation, const DoorChange& change) {
  const LineSpan lines(installation);  // what is sent from elsewhere in between would be of other rows
  lines.require();
  return Change(installation, change).make();
}

}  // namespace voxa
