#include "work/plan_sending.h"

#include <algorithm>

#include "comm/com.h"
#include "work/installation.h"

namespace voxa {

namespace {

constexpr std::size_t linesOfFile = 200;

/// What the driver said, in one line.
std::string said(Com& com) {
  std::string text = com.popErrorList();
  while (text.starts_with("\r\n")) text.erase(0, 2);
  for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;) text.replace(at, 2, "; ");
  return text;
}

/// Files of the items that have lines of a phase.
void addFiles(const ControllerPlan& plan, PlanPhase phase, std::vector<PlanFile>& files) {
  std::size_t lines = linesOfFile;  // in the last file
  for (std::size_t item = 0; item < plan.items.size(); ++item) {
    const std::size_t count = plan.items[item].of(phase).size();
    if (count == 0) continue;
    if (lines + count > linesOfFile) {
      files.push_back({phase, {}});
      lines = 0;
    }
    lines += count;
    files.back().items.push_back(item);
  }
}

}  // namespace

std::vector<PlanFile> filesOf(const ControllerPlan& plan) {
  std::vector<PlanFile> files;
  for (const PlanPhase phase : {PlanPhase::shut, PlanPhase::erase, PlanPhase::times})
    addFiles(plan, phase, files);
  PlanFile cards{PlanPhase::cards, {}};
  PlanFile doors{PlanPhase::doors, {}};
  std::size_t lines = 0;
  const auto end = [&] {
    if (!cards.items.empty()) files.push_back(std::move(cards));
    if (!doors.items.empty()) files.push_back(std::move(doors));
    cards = {PlanPhase::cards, {}};
    doors = {PlanPhase::doors, {}};
    lines = 0;
  };
  for (std::size_t item = 0; item < plan.items.size(); ++item) {
    const std::size_t rest = plan.items[item].of(PlanPhase::cards).size();
    const std::size_t opening = plan.items[item].of(PlanPhase::doors).size();
    if (rest + opening == 0) continue;
    if (lines + std::max(rest, opening) > linesOfFile) end();
    lines += std::max(rest, opening);
    if (rest != 0) cards.items.push_back(item);
    if (opening != 0) doors.items.push_back(item);
  }
  end();
  return files;
}

bool canSendAnything(const ControllerPlan& plan) {
  std::set<std::pair<ThingKind, std::int32_t>> brought;
  for (const PlanItem& item : plan.items) {
    if (item.kind != ThingKind::card) brought.insert({item.kind, item.number});
  }
  return std::any_of(plan.items.begin(), plan.items.end(), [&](const PlanItem& item) {
    const auto sends = [&](PlanPhase phase) { return !item.of(phase).empty(); };
    if (sends(PlanPhase::shut) || sends(PlanPhase::erase) || sends(PlanPhase::times) ||
        sends(PlanPhase::cards))
      return true;
    const auto needs = plan.needs.find(item.program);
    return needs == plan.needs.end() ||
           std::includes(brought.begin(), brought.end(), needs->second.begin(), needs->second.end());
  });
}

PlanSending::PlanSending(Installation& installation, const ControllerPlan& plan)
    : installation_(installation), plan_(plan) {
  left_.reserve(plan.items.size());
  for (const PlanItem& item : plan.items) {
    std::size_t lines = 0;
    for (const auto& ofPhase : item.lines) lines += ofPhase.size();
    left_.push_back(lines);
  }
}

bool PlanSending::isOpen(std::size_t item, PlanPhase phase) const {
  if (failed_.contains(item)) return false;
  if (phase == PlanPhase::times)
    return !keptBack_.contains({plan_.items[item].kind, plan_.items[item].number});
  if (phase != PlanPhase::doors) return true;
  const auto needs = plan_.needs.find(plan_.items[item].program);
  if (needs == plan_.needs.end()) return true;
  // What no item brings cannot be right, or is not sent here.
  const auto all = [&](const auto& things) {
    return std::all_of(needs->second.begin(), needs->second.end(),
                       [&](const auto& thing) { return things.contains(thing); });
  };
  // Where all of it is kept back, a card that is right opens under its old times again.
  return all(takenTimes_) || (plan_.items[item].action == PlanItem::Action::shutMeanwhile && all(keptBack_));
}

std::vector<std::string> PlanSending::linesIfTaken(const PlanFile& file) const {
  std::vector<std::string> lines;
  for (const std::size_t item : file.items) {
    const auto& ofItem = plan_.items[item].of(file.phase);
    lines.insert(lines.end(), ofItem.begin(), ofItem.end());
  }
  return lines;
}

std::vector<std::string> PlanSending::lines(const PlanFile& file) const {
  std::vector<std::string> lines;
  for (const std::size_t item : file.items) {
    if (!isOpen(item, file.phase)) continue;
    const auto& ofItem = plan_.items[item].of(file.phase);
    lines.insert(lines.end(), ofItem.begin(), ofItem.end());
  }
  return lines;
}

std::int16_t PlanSending::sendLines(const std::vector<std::string>& lines) {
  return installation_.Com().sendLinesTested(lines, plan_.place);
}

void PlanSending::send(const PlanFile& file) {
  if (stopped_) return;
  const std::vector<std::string> all = lines(file);
  if (all.empty()) return;
  if (sendLines(all) == 0) {
    for (const std::size_t item : file.items) {
      if (isOpen(item, file.phase)) take(item, plan_.items[item].of(file.phase).size());
    }
    return;
  }
  stop();
  if (!stopped_) sendOneByOne(file);
}

// Stops when the controller does not answer any more: each further line would wait for it.
void PlanSending::stop() {
  Com& com = installation_.Com();
  std::string why = said(com);
  if (com.ResetRSOUT(plan_.place.station, plan_.place.address) == 0) {
    reason_ = std::move(why);
    return;
  }
  (void)com.popErrorList();
  stopped_ = true;
  reason_ = std::move(why);
  com.noteSilence(plan_.place.station, plan_.place.address);
}

void PlanSending::sendOneByOne(const PlanFile& file) {
  for (const std::size_t item : file.items) {
    if (!isOpen(item, file.phase)) continue;
    for (const std::string& line : plan_.items[item].of(file.phase)) {
      if (sendLines({line}) == 0) {
        take(item, 1);
        continue;
      }
      stop();
      if (stopped_) return;
      refuse(item, file.phase);
      break;
    }
  }
}

void PlanSending::take(std::size_t item, std::size_t lines) {
  left_[item] -= lines;
  const PlanItem& thing = plan_.items[item];
  if (left_[item] == 0 && thing.kind != ThingKind::card) takenTimes_.insert({thing.kind, thing.number});
}

void PlanSending::refuse(std::size_t item, PlanPhase phase) {
  const PlanItem& thing = plan_.items[item];
  failed_.insert(item);
  refused_.push_back(nameOf(thing.kind, thing.number) + (reason_.empty() ? "" : ": " + reason_));
  // The card that could not be shut is as open as before.
  if (phase == PlanPhase::shut || phase == PlanPhase::erase)
    keptBack_.insert(thing.keepsBack.begin(), thing.keepsBack.end());
}

std::size_t PlanSending::taken() const {
  return static_cast<std::size_t>(std::count(left_.begin(), left_.end(), std::size_t{0}));
}

}  // namespace voxa
