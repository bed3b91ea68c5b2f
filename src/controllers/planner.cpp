#include "controllers/planner.h"

#include <algorithm>

#include "access/access_context.h"
#include "controllers/card_plan.h"
#include "controllers/ledger_view.h"
#include "controllers/times_plan.h"

namespace voxa {

namespace {

std::uint64_t digestOf(const ImageCard& card) {
  Digest digest;
  digest.add(static_cast<std::uint64_t>(card.number));
  digest.add(card.validated ? "1" : "0");
  digest.add(card.barred ? "1" : "0");
  for (const std::string& value : card.values) digest.add(value);
  return digest.value();
}

void add(Digest& digest, std::int16_t group, const ImageRights& granted) {
  digest.add(static_cast<std::uint64_t>(group));
  digest.add(granted.controllerType);
  digest.add(static_cast<std::uint64_t>(granted.rights.weeklyProgram));
  digest.add(
      static_cast<std::uint64_t>((granted.rights.firstDoor ? 1 : 0) + (granted.rights.secondDoor ? 2 : 0)));
  for (const std::int16_t output : granted.lifts) digest.add(static_cast<std::uint64_t>(output));
  digest.add(granted.fault);
}

/// Whether a controller certainly has nothing of a card, nor parts that would be in force once it is there.
bool isAbsent(const CardState& state) {
  for (std::size_t i = 0; i < cardFieldCount; ++i) {
    if (!state.part(static_cast<CardField>(i)).is("")) return false;
  }
  return state.otherLifts().is("") && std::all_of(state.lifts().begin(), state.lifts().end(),
                                                  [](const auto& lift) { return lift.second.is(""); });
}

}  // namespace

/// A controller that is being planned.
struct Planner::At {
  explicit At(const LedgerView& view) : ledger(view) {}

  const LedgerView& ledger;
  ControllerPlan plan;
  std::map<std::int32_t, std::uint64_t> digests;  // of what was in order
  bool isNew = false;
  bool installed = false;
  Buckets wanted{};  // digests
  std::optional<TimesPlan> times;
};

Planner::Planner(AccessContext& context, PlanScope scope)
    : scope_(std::move(scope)), image_(context, scope_.card) {
  if (scope_.card && (*scope_.card < 1 || *scope_.card > greatestCardNumber)) {
    throw Error(err::invalidArgument, "Invalid argument: a card number is a number from 1 to " +
                                          std::to_string(greatestCardNumber) + ", not " +
                                          std::to_string(*scope_.card));
  }
  for (const ImageCard& card : image_.cards()) {
    const std::int32_t bucket = bucketOfCard(card.number);
    if (!card.fault.empty() || card.marks[creditPart]) withoutDigest_.insert(bucket);
    if (!card.wanted) continue;
    ofGroups_[card.group].at(static_cast<std::size_t>(bucket)) += digestOf(card);
  }
}

std::vector<ControllerPlace> Planner::places(LedgerView& ledger) const {
  ledger.controllers().requireInstallation();
  if (scope_.card) ledger.narrowTo(*scope_.card);
  std::set<ControllerPlace> places;
  const auto take = [&](const ControllerPlace& place) {
    if (isOfController(place.address) && (!scope_.places || scope_.places->contains(place)))
      places.insert(place);
  };
  for (const auto& [place, type] : ledger.controllers().installed()) take(place);
  for (const auto& [place, controller] : ledger.controllers().all()) {
    // Where no reader ever was, and nothing was ever acknowledged, there is no controller.
    if (!controller.type.empty() || controller.lastContact) take(place);
  }
  return {places.begin(), places.end()};
}

ControllerPlan Planner::plan(const LedgerView& ledger, const ControllerPlace& place) const {
  At at(ledger);
  at.plan.place = place;
  const LedgerController* known = ledger.controllers().find(place);
  at.isNew = known == nullptr || (known->changes == 0 && ledger.knowsNothingOf(place));
  const auto installed = ledger.controllers().installed().find(place);
  at.installed = installed != ledger.controllers().installed().end();
  at.plan.type = at.installed ? installed->second : known == nullptr ? "" : known->type;
  if (at.plan.type.empty() && at.installed) {
    at.plan.leftOut.push_back({ThingKind::card, 0, "the controller",
                               "its readers name two types of controller: lines have two forms"});
    at.plan.hasNoForm = true;
    for (const auto& [group, granted] : image_.grantedAt(place)) at.plan.groupsLeftOut.push_back(group);
  }
  at.digests = ledger.digests(place);
  // Without a type only cards can be erased: that line has one form.
  if (!at.plan.type.empty()) planThings(at);
  planCards(at);
  std::sort(at.plan.items.begin(), at.plan.items.end(), [](const PlanItem& one, const PlanItem& other) {
    return std::pair(one.kind, one.number) < std::pair(other.kind, other.number);
  });
  return std::move(at.plan);
}

bool Planner::hasBothTypes(const At& at) const {
  const auto& installed = at.ledger.controllers().installed();
  return std::any_of(installed.begin(), installed.end(), [&](const auto& controller) {
    return !controller.second.empty() && controller.second != at.plan.type;
  });
}

void Planner::planThings(At& at) const {
  static const ThingImages nothing;
  const ThingImages& wanted = at.installed ? image_.things(at.plan.type) : nothing;
  const std::uint64_t digest = wanted.digest;
  // What only the other kind of controller takes is told of where there is none.
  if (!hasBothTypes(at)) at.plan.leftOut = wanted.ofOthers;
  const auto known = at.digests.find(bucketOfThings);
  if (!scope_.full && wanted.leftOut.empty() && known != at.digests.end() && known->second == digest) return;
  at.times.emplace(wanted, at.ledger.holdings(at.plan.place, slotsBehindCards), at.plan.type, at.isNew,
                   scope_.full);
  at.plan.leftOut.insert(at.plan.leftOut.end(), wanted.leftOut.begin(), wanted.leftOut.end());
  std::vector<PlanItem> items = at.times->takeItems();
  if (items.empty() && wanted.leftOut.empty()) at.ledger.note(at.plan.place, bucketOfThings, digest);
  if (scope_.card) return;
  at.plan.items = std::move(items);
}

std::array<std::uint64_t, cardBuckets> Planner::cardDigests(const ControllerPlace& place) const {
  Buckets digests{};
  for (const auto& [group, granted] : image_.grantedAt(place)) {
    const auto cards = ofGroups_.find(group);
    if (cards == ofGroups_.end()) continue;
    for (std::size_t bucket = 0; bucket < digests.size(); ++bucket) {
      if (cards->second.at(bucket) == 0) continue;
      Digest digest;
      add(digest, group, granted);
      digest.add(cards->second.at(bucket));
      digests.at(bucket) += digest.value();
    }
  }
  return digests;
}

void Planner::addNeeds(At& at, std::int16_t program) {
  if (auto needs = at.times->needsOf(program); !needs.empty()) at.plan.needs[program] = std::move(needs);
}

void Planner::planCards(At& at) const {
  static const Holdings noHoldings;
  if (!at.times) at.times.emplace(ThingImages(), noHoldings, at.plan.type, at.isNew, false);
  for (const auto& [group, granted] : image_.grantedAt(at.plan.place)) {
    addNeeds(at, granted.rights.weeklyProgram);
    if (granted.fault.empty() || !ofGroups_.contains(group)) continue;
    at.plan.leftOut.push_back({ThingKind::card, 0, "access group " + std::to_string(group), granted.fault});
    at.plan.groupsLeftOut.push_back(group);
  }
  if (scope_.card) {
    const CardsAt cards = cardsAt(at);
    const SlotRange slot{*scope_.card, *scope_.card + 1};
    planNumber(at, cards, at.ledger.holdings(at.plan.place, slot), *scope_.card);
    return;
  }
  const std::vector<std::int32_t> buckets = bucketsToWalk(at);
  // Buckets that lie together are read together.
  for (auto first = buckets.begin(); first != buckets.end();) {
    auto end = first + 1;
    while (end != buckets.end() && *end == *(end - 1) + 1) ++end;
    const SlotRange slots{*first * cardsOfBucket,
                          std::min((*(end - 1) + 1) * cardsOfBucket, firstSlotBehindCards)};
    const Holdings held = at.ledger.holdings(at.plan.place, slots);
    for (; first != end; ++first) planBucket(at, held, *first);
  }
}

std::vector<std::int32_t> Planner::bucketsToWalk(At& at) const {
  at.wanted = cardDigests(at.plan.place);
  const bool all = scope_.full || at.times->ofAny() == TimesPlan::Change::mixed;
  std::vector<std::int32_t> buckets;
  for (std::int32_t bucket = 0; bucket < cardBuckets; ++bucket) {
    const auto known = at.digests.find(bucket);
    const bool inOrder =
        known != at.digests.end() && known->second == at.wanted.at(static_cast<std::size_t>(bucket));
    if (!inOrder || all || withoutDigest_.contains(bucket)) buckets.push_back(bucket);
  }
  return buckets;
}

void Planner::planBucket(At& at, const Holdings& held, std::int32_t bucket) const {
  const SlotRange slots{bucket * cardsOfBucket, std::min((bucket + 1) * cardsOfBucket, firstSlotBehindCards)};
  const CardsAt cards = cardsAt(at);
  std::set<std::int32_t> numbers;
  for (auto card = held.cards.lower_bound(slots.first); card != held.cards.end() && card->first < slots.end;
       ++card)
    numbers.insert(card->first);
  const auto below = [](const ImageCard& card, std::int32_t than) { return card.number < than; };
  const auto& rows = image_.cards();
  for (auto card = std::lower_bound(rows.begin(), rows.end(), slots.first, below);
       card != rows.end() && card->number < slots.end; ++card)
    numbers.insert(card->number);
  if (held.unknownOthers.contains(ThingKind::card)) {
    for (std::int32_t number = std::max(slots.first, 1); number < slots.end; ++number) numbers.insert(number);
  }
  numbers.erase(0);  // which no controller takes for a card
  const std::size_t before = at.plan.items.size();
  for (const std::int32_t number : numbers) planNumber(at, cards, held, number);
  if (at.plan.items.size() == before && !withoutDigest_.contains(bucket) && !at.plan.hasNoForm)
    at.ledger.note(at.plan.place, bucket, at.wanted.at(static_cast<std::size_t>(bucket)));
}

CardsAt Planner::cardsAt(const At& at) const {
  return {at.plan.type, *at.times, at.isNew, scope_.full, !scope_.card};
}

void Planner::planNumber(At& at, const CardsAt& cards, const Holdings& held, std::int32_t number) const {
  const ImageCard* card = image_.card(number);
  const ImageRights* granted = card == nullptr ? nullptr : image_.granted(at.plan.place, card->group);
  const CardState state = held.card(number);
  std::optional<PlanItem> item;
  const bool wanted = card != nullptr && card->wanted && (granted != nullptr || card->several);
  // A card that is not valid opens nothing where it is shut, nor where it is not at all.
  const bool absent = isAbsent(state) && !scope_.full;
  if (wanted && !card->validated && !card->several && (absent || scope_.erasesBlocked)) {
    item = unwantedCard(cards, number, PlanReason::blocked, state);
  } else if (wanted && at.plan.type.empty()) {
    if (card->barred) item = unwantedCard(cards, number, PlanReason::blocked, state);
  } else if (wanted && card->fault.empty() && granted->fault.empty()) {
    item = wantedCard(cards, *card, *granted, state, at.ledger.isCreditSent(number));
  } else if (wanted) {
    const bool known = granted != nullptr && granted->fault.empty() && !card->several;
    item = faultyCard(cards, *card, known ? granted : nullptr, state);
    if (item) addNeeds(at, item->program);
  } else {
    const PlanReason reason = card == nullptr || card->deleted ? PlanReason::deleted
                              : card->wanted                   ? PlanReason::leftGroup
                                                               : PlanReason::noCode;
    item = unwantedCard(cards, number, reason, state);
  }
  if (item) at.plan.items.push_back(std::move(*item));
}

}  // namespace voxa
