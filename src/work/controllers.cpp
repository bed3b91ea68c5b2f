#include "work/controllers.h"

#include <algorithm>
#include <map>

#include "comm/com.h"
#include "controllers/ledger_view.h"
#include "files/line_span.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/files.h"
#include "work/carry_out.h"
#include "work/installation.h"
#include "work/line_test.h"
#include "work/look_up.h"
#include "work/readers.h"
#include "work/refusal.h"

namespace voxa {

namespace {

constexpr double minutesOfDay = 24 * 60;
constexpr const char* dump = "J.DAT";

std::map<ControllerPlace, std::vector<std::string>> readerNames(Database& database) {
  std::map<ControllerPlace, std::vector<std::string>> names;
  const auto rows = database.openRecordset(
      "select StationId, ControllerAddress, Name from Readers where ControllerAddress is not null order by "
      "Position");
  for (; !rows->eof(); rows->moveNext()) {
    names[{rows->get("StationId").toInt16(), rows->get("ControllerAddress").toInt16()}].push_back(
        rows->get("Name").toText());
  }
  return names;
}

/// A clock runs on for as long as a controller has power.
bool isAtStart(const Value& clock, const LedgerController* known) {
  return known != nullptr && !clock.isNull() && clock.toDateTime().days < known->since.days - 1;
}

void addHoldings(ControllerOverview& overview, const Holdings& held) {
  overview.cards =
      static_cast<std::int32_t>(std::count_if(held.cards.begin(), held.cards.end(), [](const auto& card) {
        const Possible& code = card.second.part(CardField::code);
        return !code.is("") &&
               (code.certainty() == Certainty::held || code.certainty() == Certainty::assumed);
      }));
}

/// Whether nothing is in the memory of a controller. The driver leaves its content in a file.
bool isMemoryEmpty(Installation& installation, const ControllerPlace& place) {
  const LineSpan lines(installation);
  lines.require();
  Com& com = installation.Com();
  const auto send = [&](ComCommandsEnum command) {
    return com.Send(command, place.station, place.address, true);
  };
  if (files::exists(dump) || send(CmResetReadPointer) != 0 || send(cmReadMemory) != 0) return false;
  const bool empty = files::contents(dump).value_or("").find_first_not_of(" \r\n\x1a") == std::string::npos;
  (void)files::removeRegular(dump);
  (void)send(CmResetReadPointer);
  return empty;
}

}  // namespace

const char* textOf(ControllerOverview::State state) {
  switch (state) {
    case ControllerOverview::State::inUse:
      return "in use";
    case ControllerOverview::State::notInUse:
      return "not in use";
    case ControllerOverview::State::hungUp:
      return "hung up";
    case ControllerOverview::State::retired:
      break;
  }
  return "retired";
}

ControllerOverviews overviewControllers(Installation& installation) {
  using State = ControllerOverview::State;
  ControllerOverviews all;
  all.notices = testLines(installation, {}).notices;
  std::map<ControllerPlace, ControllerState> states;
  for (ControllerState& state : listControllers(installation)) states[state.place] = state;
  const auto readers = readerNames(installation.database());
  const WholePlan whole = planAll(installation, {});
  const DateTime now = installation.clock().now();
  (void)installation.ledger().look([&](const LedgerView& ledger) {
    for (const PlannedController& planned : whole.controllers) {
      ControllerOverview& overview = all.controllers.emplace_back();
      const ControllerPlace& place = overview.place = planned.plan.place;
      overview.state = planned.inUse ? State::inUse : planned.dialUp ? State::hungUp : State::notInUse;
      if (const auto named = readers.find(place); named != readers.end()) overview.readers = named->second;
      if (const auto tested = states.find(place); tested != states.end()) {
        overview.answers = tested->second.answers;
        overview.clock = tested->second.clock;
      }
      const LedgerController* known = ledger.controllers().find(place);
      overview.clockAtStart = isAtStart(overview.clock, known);
      if (!overview.clock.isNull()) {
        // A clock is read in whole minutes, so it seems up to one behind.
        overview.deviation =
            static_cast<std::int32_t>((overview.clock.toDateTime().days - now.days) * minutesOfDay);
      }
      addHoldings(overview, ledger.holdings(place));
      const auto& items = planned.plan.items;
      overview.doubt =
          static_cast<std::size_t>(std::count_if(items.begin(), items.end(), [](const PlanItem& item) {
            return item.action == PlanItem::Action::sendAgain;
          }));
      overview.missing = missingOf(items) - overview.doubt;
      overview.since = known == nullptr ? now : known->since;
      if (known != nullptr && known->lastContact) overview.lastContact = *known->lastContact;
      overview.station = ledger.controllers().nameOf(place.station);
    }
    for (const LedgerController& gone : ledger.retired()) {
      ControllerOverview& overview = all.controllers.emplace_back();
      overview.place = gone.place;
      overview.station = gone.stationName;
      overview.state = State::retired;
      overview.since = gone.since;
      if (gone.lastContact) overview.lastContact = *gone.lastContact;
    }
  });
  return all;
}

void noteReplaced(Installation& installation, const std::string& station, const std::string& address,
                  bool usedElsewhere) {
  const LineSpan lines(installation);
  lines.require();
  const auto row = stationNamed(installation, station);
  const ControllerPlace place{row->get("Id").toInt16(), controllerAddress(address)};
  bool known = false;
  const bool there = installation.ledger().look([&](const LedgerView& ledger) {
    known = ledger.controllers().find(place) != nullptr || ledger.controllers().installed().contains(place);
  });
  if (!there) throw Refusal("there is no ledger of what the controllers hold");
  if (!known)
    throw Refusal(station + " has no controller " + address +
                  ": no reader names it, and nothing was ever sent to it");
  installation.ledger().replace(place, usedElsewhere);
}

std::vector<SuspectController> controllersAtStart(Installation& installation) {
  std::vector<SuspectController> suspects;
  (void)installation.ledger().look([&](const LedgerView& ledger) {
    for (const ControllerState& state : listControllers(installation)) {
      if (isAtStart(state.clock, ledger.controllers().find(state.place)))
        suspects.push_back({state.place, {}, state.clock, false});
    }
  });
  for (SuspectController& suspect : suspects)
    suspect.name = installation.Com().getName(suspect.place.station, suspect.place.address);
  return suspects;
}

ControllerCheck checkControllers(Installation& installation) {
  ControllerCheck check;
  const LineTest test = testLines(installation, {});
  check.notices = test.notices;
  check.silent = namesOf(test.silent);
  check.suspects = controllersAtStart(installation);
  for (SuspectController& suspect : check.suspects)
    suspect.memoryEmpty = isMemoryEmpty(installation, suspect.place);
  return check;
}

}  // namespace voxa
