#include "work/carry_out.h"

#include <algorithm>
#include <map>

#include "comm/com.h"
#include "comm/dialling.h"
#include "comm/station.h"
#include "controllers/ledger_view.h"
#include "files/conversions.h"
#include "files/line_span.h"
#include "platform/database/database.h"
#include "work/clear_marks.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/plan_sending.h"
#include "work/refusal.h"

namespace voxa {

namespace {

constexpr std::size_t itemsOfRound = 20'000;  // that are planned before they are sent
constexpr std::size_t linesOfBlock = 5'000;   // that are announced to the ledger at once

void requireLedger(bool there) {
  if (!there)
    throw Refusal("there is no ledger of what the controllers hold: the folder takes no file Ledger.MDB");
}

void requireIntervals(const LedgerView& ledger, bool four) {
  const std::optional<bool> known = ledger.fourIntervals();
  if (!known || *known == four) return;
  throw Refusal(std::string("the controllers were told daily programs of ") + (*known ? "four" : "two") +
                " intervals a day, and this call has " + (four ? "four" : "two") +
                ": call it as before, or have them all changed by 'voxa download --change-intervals'");
}

/// The lines as the rows of the stations have them.
struct StationLine {
  bool inUse = false;
  bool dialUp = false;
};
std::map<std::int16_t, StationLine> stationLines(Database& database) {
  std::map<std::int16_t, StationLine> lines;
  const auto rows = database.openRecordset("select Id, Active, Phone from Stations");
  for (; !rows->eof(); rows->moveNext()) {
    const Value phone = rows->get("Phone");
    lines[rows->get("Id").toInt16()] = {rows->get("Active").toBool(), !phone.isNull() && phone != Value("")};
  }
  return lines;
}

class Work {
 public:
  Work(Installation& installation, const CarryOut& how, Observer* observer)
      : installation_(installation), how_(how), observer_(observer), planner_(installation, how.scope) {}

  CarriedOutPlan run() {
    hangUpAbandoned(installation_);
    std::set<std::int32_t> credits;
    lines_ = stationLines(installation_.database());
    const bool four = planner_.image().fourIntervals();
    bool noted = false;
    std::vector<ControllerPlace> places;
    std::vector<ControllerPlan> plans;
    std::size_t planned = 0;
    requireLedger(installation_.ledger().look([&](LedgerView& ledger) {
      if (!how_.changeIntervals) requireIntervals(ledger, four);
      noted = ledger.fourIntervals() == four;
      credits = ledger.creditsSent();
      places = planner_.places(ledger);
      arrange(places);
      if (!installation_.Com().inhibitCom) plans = planRound(ledger, now_, planned);
    }));
    endCredits(installation_, credits);
    if (!installation_.Com().inhibitCom) {
      if ((!places.empty() || how_.changeIntervals) && !noted) installation_.ledger().noteFourIntervals(four);
      sendRound(plans);
      send(now_, planned);
      sendLater();
    }
    conclude();
    return std::move(result_);
  }

 private:
  /// Those of the lines in use first; then station by station those that are called.
  void arrange(const std::vector<ControllerPlace>& places) {
    for (const ControllerPlace& place : places) {
      const StationLine line = lines_[place.station];
      if (line.inUse) now_.push_back(place);
      if (!line.inUse && line.dialUp && how_.dial) later_[place.station].push_back(place);
    }
  }

  void sendLater() {
    for (const auto& [station, places] : later_) {
      if (!missesAnything(places)) continue;
      const StationCall call(installation_, station);
      if (!call.isUp()) {
        for (const ControllerPlace& place : places) why_[place] = call.failure();
        continue;
      }
      send(places);
    }
  }

  bool missesAnything(const std::vector<ControllerPlace>& places) {
    bool any = false;
    (void)installation_.ledger().look([&](LedgerView& ledger) {
      (void)planner_.places(ledger);
      for (const ControllerPlace& place : places) any = any || canSendAnything(planner_.plan(ledger, place));
    });
    return any;
  }

  /// The plans of some places that miss something, from `next` on.
  std::vector<ControllerPlan> planRound(const LedgerView& ledger, const std::vector<ControllerPlace>& places,
                                        std::size_t& next) const {
    std::vector<ControllerPlan> plans;
    for (std::size_t items = 0; next < places.size() && items < itemsOfRound; ++next) {
      ControllerPlan plan = planner_.plan(ledger, places[next]);
      items += plan.items.size();
      if (!plan.items.empty()) plans.push_back(std::move(plan));
    }
    return plans;
  }

  void send(const std::vector<ControllerPlace>& places, std::size_t next = 0) {
    while (next < places.size()) {
      std::vector<ControllerPlan> plans;
      (void)installation_.ledger().look([&](LedgerView& ledger) {
        (void)planner_.places(ledger);
        plans = planRound(ledger, places, next);
      });
      sendRound(plans);
    }
  }

  void sendRound(const std::vector<ControllerPlan>& plans) {
    beginCredits(plans);
    std::vector<PlanSending> sendings;
    std::vector<std::pair<std::size_t, PlanFile>> files;
    sendings.reserve(plans.size());
    const std::set<ControllerPlace> known = knownToAnswer(plans);
    for (const ControllerPlan& plan : plans) {
      if (!known.contains(plan.place) && !answers(plan.place)) continue;
      for (PlanFile& file : filesOf(plan)) files.emplace_back(sendings.size(), std::move(file));
      sendings.emplace_back(installation_, plan);
      sent_.push_back(plan.place);
    }
    for (std::size_t first = 0; first < files.size();) first = sendBlock(sendings, files, first);
    const std::size_t begun = sent_.size() - sendings.size();
    for (std::size_t i = 0; i < sendings.size(); ++i) {
      Taken& taken = taken_[sent_[begun + i]];
      taken.things += sendings[i].taken();
      taken.refused = sendings[i].refused();
      if (sendings[i].stopped()) why_[sent_[begun + i]] = sendings[i].reason();
    }
  }

  /// Sends files that fit in one announcement to the ledger; behind the last of them.
  std::size_t sendBlock(std::vector<PlanSending>& sendings,
                        const std::vector<std::pair<std::size_t, PlanFile>>& files, std::size_t first) {
    std::vector<PlannedSend> sends;
    std::size_t lines = 0;
    std::size_t end = first;
    for (; end < files.size() && (end == first || lines < linesOfBlock); ++end) {
      const auto& [sending, file] = files[end];
      sends.push_back(
          {sent_[sent_.size() - sendings.size() + sending], sendings[sending].linesIfTaken(file)});
      lines += sends.back().lines.size();
    }
    const ExpectedSends expected(installation_.ledger(), sends);
    for (; first < end; ++first) {
      sendings[files[first].first].send(files[first].second);
      if (observer_ != nullptr) observer_->progress("Sending", first + 1, files.size());
    }
    return end;
  }

  /// A card's marked credit goes to all its controllers once, however often the download is repeated.
  void beginCredits(const std::vector<ControllerPlan>& plans) {
    std::map<std::int32_t, std::vector<ControllerPlace>> credits;
    for (const ControllerPlan& plan : plans) {
      for (const PlanItem& item : plan.items) {
        if (item.creditMarked && item.kind == ThingKind::card) credits.try_emplace(item.number);
      }
    }
    for (auto& [number, places] : credits) {
      places = planner_.image().placesOf(planner_.image().card(number)->group);
    }
    installation_.ledger().beginCredits(credits);
  }

  /// For a card alone nothing is tested where this process has found before that it answers.
  std::set<ControllerPlace> knownToAnswer(const std::vector<ControllerPlan>& plans) {
    std::set<ControllerPlace> known;
    if (!how_.scope.card) return known;
    const Reading moment(installation_.database());
    Com& com = installation_.Com();
    for (const ControllerPlan& plan : plans) {
      const ControllerPlace& place = plan.place;
      if (com.hasAnswered(place) && com.TestSend(place.station, place.address)) known.insert(place);
    }
    return known;
  }

  /// By a test of its station that is made once.
  bool answers(const ControllerPlace& place) {
    Com& com = installation_.Com();
    if (tested_.insert(place.station).second) {
      (void)com.refresh(place.station, into(result_.notices));
      (void)com.popErrorList();  // the silent ones are named one by one
    }
    if (com.hasAnswered(place)) return true;
    // One that the station's result leaves out is asked by itself; one without readers, which no test asks,
    // whatever was found of it before.
    if (!withReaders_) withReaders_ = com.controllerNames();
    const bool open = !withReaders_->contains(place) || com.TestSend(place.station, place.address);
    const bool answers = open && com.ResetRSOUT(place.station, place.address) == 0;
    if (!answers) why_[place] = "does not answer";
    return answers;
  }

  void conclude() {
    PlanScope scope = how_.scope;
    scope.full = false;
    const bool inhibited = installation_.Com().inhibitCom;
    WholePlan left = inhibited ? planAll(installation_, scope) : clearMarks(installation_, scope);
    result_.leftOut = std::move(left.leftOut);
    for (PlannedController& controller : left.controllers) {
      CarriedOut& told = result_.controllers.emplace_back();
      told.place = controller.plan.place;
      told.name = std::move(controller.name);
      told.missing = std::move(controller.plan.items);
      told.leftOut = std::move(controller.plan.leftOut);
      const auto taken = taken_.find(told.place);
      if (taken != taken_.end()) {
        told.sent = taken->second.things;
        told.refused = taken->second.refused;
      }
      const auto why = why_.find(told.place);
      if (why != why_.end()) told.reason = why->second;
      if (told.missing.empty()) {
        told.outcome = told.sent == 0 ? Outcome::unchanged : Outcome::done;
      } else if (inhibited) {
        told.outcome = Outcome::waiting;
        told.reason = "communications are inhibited";
      } else if (!controller.inUse && told.reason.empty()) {
        told.outcome = Outcome::waiting;
        told.reason =
            controller.dialUp ? "its line is hung up, and was not to be called" : "its line is not in use";
      } else {
        told.outcome = why != why_.end() ? Outcome::silent : Outcome::failed;
      }
    }
  }

  struct Taken {
    std::size_t things = 0;
    std::vector<std::string> refused;
  };

  Installation& installation_;
  const CarryOut& how_;
  Observer* observer_;
  Planner planner_;
  std::map<std::int16_t, StationLine> lines_;
  std::vector<ControllerPlace> now_;
  std::map<std::int16_t, std::vector<ControllerPlace>> later_;
  std::set<std::int16_t> tested_;
  std::optional<std::map<ControllerPlace, std::string>> withReaders_;  // their names
  std::vector<ControllerPlace> sent_;
  std::map<ControllerPlace, Taken> taken_;
  std::map<ControllerPlace, std::string> why_;  // not all was sent
  CarriedOutPlan result_;
};

}  // namespace

std::optional<std::set<ControllerPlace>> placesOf(Installation& installation, const std::string& station,
                                                  const std::string& reader) {
  if (station.empty() && reader.empty()) return std::nullopt;
  std::set<ControllerPlace> places;
  if (!reader.empty()) {
    const auto row = readerNamed(installation, reader);
    places.insert({nullToInt(row->get("StationId")), nullToInt(row->get("ControllerAddress"))});
    return places;
  }
  const std::int16_t id = stationNamed(installation, station)->get("Id").toInt16();
  for (std::int16_t address = 1; isOfController(address); ++address) places.insert({id, address});
  return places;
}

bool CarriedOutPlan::isComplete() const {
  return !broken && leftOut.empty() &&
         std::all_of(controllers.begin(), controllers.end(), [](const CarriedOut& controller) {
           return controller.missing.empty() && controller.leftOut.empty();
         });
}

CarriedOutPlan carryOut(Installation& installation, const CarryOut& how, Observer* observer) {
  if (installation.engine().inTransaction())
    throw Refusal("a download cannot be taken back: end the transaction before it");
  if (installation.Com().inhibitCom && how.changeIntervals)
    throw Refusal("the number of intervals cannot change while communications are inhibited");
  const LineSpan lines(installation);
  lines.require();
  return Work(installation, how, observer).run();
}

void requireIntervals(Installation& installation) {
  (void)installation.ledger().look([&](const LedgerView& ledger) {
    requireIntervals(ledger, installation.Com().pDailyPrograms4Zones == 1);
  });
}

WholePlan planAll(Installation& installation, const PlanScope& scope) {
  WholePlan whole;
  const Planner planner(installation, scope);
  whole.leftOut = planner.leftOut();
  auto lines = stationLines(installation.database());
  requireLedger(installation.ledger().look([&](LedgerView& ledger) {
    requireIntervals(ledger, planner.image().fourIntervals());
    whole.groupsLeftOut = planner.image().groupsLeftOut();
    whole.creditsOnTheirWay = ledger.creditsSent();
    for (const ControllerPlace& place : planner.places(ledger)) {
      const StationLine line = lines[place.station];
      std::string station = ledger.controllers().nameOf(place.station);
      whole.controllers.push_back(
          {planner.plan(ledger, place), {}, std::move(station), line.inUse, line.dialUp});
    }
  }));
  const auto names = installation.Com().controllerNames();
  for (PlannedController& controller : whole.controllers) {
    const ControllerPlace& place = controller.plan.place;
    const auto name = names.find(place);
    controller.name =
        name != names.end() ? name->second : installation.Com().getName(place.station, place.address);
  }
  return whole;
}

}  // namespace voxa
