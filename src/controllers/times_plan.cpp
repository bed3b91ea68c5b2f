#include "controllers/times_plan.h"

#include <algorithm>

#include "lines/holiday.h"

namespace voxa {

namespace {

constexpr std::size_t programWidth = 2;
constexpr std::size_t ddmm = 4;

/// The daily programs that the value of a weekly program names.
void addDailies(const std::string& value, std::set<std::int32_t>& dailies) {
  for (std::size_t at = 0; at + programWidth <= value.size(); at += programWidth)
    dailies.insert(std::stoi(value.substr(at, programWidth)));
}

PlanReason reasonOf(const Possible& held, bool isNew, bool differs) {
  if (isNew) return PlanReason::newController;
  if (!differs) return PlanReason::requested;
  switch (held.certainty()) {
    case Certainty::doubt:
      return PlanReason::answerLost;
    case Certainty::unknown:
      return PlanReason::unknown;
    case Certainty::held:
    case Certainty::assumed:
      break;
  }
  return held.last().empty() ? PlanReason::notSent : PlanReason::changed;
}

PlanItem::Action sending(PlanReason reason) {
  const bool again = reason == PlanReason::answerLost || reason == PlanReason::unknown;
  return again ? PlanItem::Action::sendAgain : PlanItem::Action::send;
}

}  // namespace

TimesPlan::TimesPlan(const ThingImages& wanted, const Holdings& held, const std::string& controllerType,
                     bool isNew, bool full) {
  for (const LeftOut& row : wanted.leftOut) {
    wanted_.insert({row.kind, row.number});
    faults_.insert({row.kind, row.number});
  }
  for (const ThingImage& image : wanted.things) want(image, held, isNew, full);
  for (const auto& [thing, before] : held.things) {
    if (thing.first == ThingKind::weeklyC) noteDailies(thing.second, before);
  }
  eraseHolidays(held, controllerType);
  repeatFormats(held, controllerType, isNew, full);
}

void TimesPlan::want(const ThingImage& image, const Holdings& held, bool isNew, bool full) {
  const Thing thing{image.line.kind, image.line.number};
  const Possible before = held.thing(thing.first, thing.second);
  wanted_.insert(thing);
  if (thing.first == ThingKind::weeklyC)
    addDailies(image.line.value, dailies_[static_cast<std::int16_t>(thing.second)]);
  const bool differs = !before.is(image.line.value);
  if (differs) {
    changes_.insert(thing);
    if (thing.first == ThingKind::holiday) noteDays(before, image.line.value);
  }
  if (!differs && !full) return;
  const PlanReason reason = reasonOf(before, isNew, differs);
  add(thing, sending(reason), reason, image.text);
}

void TimesPlan::noteDailies(std::int32_t number, const Possible& before) {
  const auto program = static_cast<std::int16_t>(number);
  std::set<std::int32_t>& dailies = dailies_[program];
  addDailies(before.last(), dailies);
  for (const std::string& value : before.since()) addDailies(value, dailies);
  if (before.mayBeAny()) anyDaily_.insert(program);
}

void TimesPlan::noteDays(const Possible& before, const std::string& after) {
  anyDay_ = anyDay_ || before.mayBeAny();
  if (!before.last().empty()) daysBefore_.insert(before.last().substr(0, ddmm));
  for (const std::string& day : before.since()) {
    if (!day.empty()) daysBefore_.insert(day.substr(0, ddmm));
  }
  if (!after.empty()) daysAfter_.insert(after.substr(0, ddmm));
}

// A slot that no row has. Programs that no row has decide about nothing, and no line takes them away.
void TimesPlan::eraseHolidays(const Holdings& held, const std::string& controllerType) {
  for (std::int32_t slot = 1; slot <= holidaySlots(controllerType); ++slot) {
    const Thing thing{ThingKind::holiday, slot};
    const Possible before = held.thing(thing.first, thing.second);
    if (wanted_.contains(thing) || before.is("")) continue;
    changes_.insert(thing);
    noteDays(before, "");
    const PlanReason reason = reasonOf(before, false, true);
    const bool known = reason == PlanReason::changed;
    add(thing, PlanItem::Action::erase, known ? PlanReason::deleted : reason,
        clearHolidayLine(static_cast<std::int16_t>(slot)));
  }
}

// Which reader works with which format no row says: each gets again what it was sent last.
void TimesPlan::repeatFormats(const Holdings& held, const std::string& controllerType, bool isNew,
                              bool full) {
  for (const auto& [thing, before] : held.things) {
    const bool differs = before.certainty() == Certainty::doubt;
    if (thing.first != ThingKind::badgeFormat || (!differs && !full)) continue;
    std::vector<std::string> sent = before.since();
    sent.insert(sent.begin(), before.last());
    // The last one that a controller takes.
    std::string line;
    for (const std::string& value : sent) {
      const std::string again = "04" + (thing.second == 0 ? "" : std::to_string(thing.second)) + value;
      if (!value.empty() && sentLine(again, controllerType).fit == SentLine::Fit::certain) line = again;
    }
    if (line.empty()) continue;
    const PlanReason reason = reasonOf(before, isNew, differs);
    add(thing, sending(reason), reason, std::move(line));
  }
}

void TimesPlan::add(const Thing& thing, PlanItem::Action action, PlanReason reason, std::string line) {
  PlanItem& item = items_.emplace_back();
  item.kind = thing.first;
  item.number = thing.second;
  item.action = action;
  item.reason = reason;
  item.of(PlanPhase::times).push_back(std::move(line));
}

std::set<std::int32_t> TimesPlan::dailiesOf(std::int16_t program) const {
  std::set<std::int32_t> dailies;
  if (anyDaily_.contains(program)) {
    for (const Thing& thing : changes_) {
      if (thing.first == ThingKind::daily) dailies.insert(thing.second);
    }
  }
  if (const auto known = dailies_.find(program); known != dailies_.end())
    dailies.insert(known->second.begin(), known->second.end());
  return dailies;
}

TimesPlan::Change TimesPlan::of(std::int16_t program) const {
  if (program == 0) return Change::none;
  const std::set<std::int32_t> dailies = dailiesOf(program);
  bool daily = false;
  bool holiday = false;
  for (const auto& [kind, number] : changes_) {
    holiday = holiday || kind == ThingKind::holiday;
    daily = daily || (kind == ThingKind::daily && dailies.contains(number));
  }
  const bool weekly = changes_.contains({ThingKind::weeklyC, program});
  const int kinds = (daily ? 1 : 0) + (holiday ? 1 : 0) + (weekly ? 1 : 0);
  if (kinds == 0) return Change::none;
  if (kinds > 1) return Change::mixed;
  // A day that moves from one slot to another is no holiday in between.
  const bool moves = anyDay_ || std::any_of(daysBefore_.begin(), daysBefore_.end(),
                                            [&](const std::string& day) { return daysAfter_.contains(day); });
  return holiday && moves ? Change::mixed : Change::simple;
}

TimesPlan::Change TimesPlan::ofAny() const {
  Change worst = Change::none;
  for (const auto& [program, dailies] : dailies_) worst = std::max(worst, of(program));
  // Programs that no row has any more.
  const bool others = std::any_of(changes_.begin(), changes_.end(), [](const Thing& thing) {
    return thing.first == ThingKind::daily || thing.first == ThingKind::holiday;
  });
  return others ? std::max(worst, Change::simple) : worst;
}

std::set<std::pair<ThingKind, std::int32_t>> TimesPlan::needsOf(std::int16_t program) const {
  std::set<Thing> needs;
  if (program == 0) return needs;
  const std::set<std::int32_t> dailies = dailiesOf(program);
  const auto take = [&](const std::set<Thing>& things) {
    for (const Thing& thing : things) {
      const auto& [kind, number] = thing;
      const bool decides = kind == ThingKind::daily ? dailies.contains(number)
                                                    : kind == ThingKind::weeklyC && number == program;
      if (decides) needs.insert(thing);
    }
  };
  take(changes_);
  take(faults_);
  // One that cannot be right is told of; it keeps no door shut on all other days.
  for (const Thing& thing : changes_) {
    if (thing.first == ThingKind::holiday) needs.insert(thing);
  }
  return needs;
}

}  // namespace voxa
