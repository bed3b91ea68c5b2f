#include "controllers/ledger_view.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "controllers/digest.h"
#include "controllers/ledger_file.h"
#include "controllers/ledger_settings.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

constexpr int hexadecimal = 16;

std::string textOf(std::uint64_t digest) {
  std::array<char, 16> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), digest, hexadecimal);
  return {text.data(), end.ptr};
}

std::uint64_t digestOf(const std::string& text) {
  std::uint64_t digest = 0;
  (void)std::from_chars(text.data(), text.data() + text.size(), digest, hexadecimal);
  return digest;
}

}  // namespace

LedgerView::LedgerView(const LedgerFile& file, const ControllerList& controllers, bool keeps)
    : file_(file), controllers_(controllers), keeps_(keeps) {
  const auto rows = file_.database().openRecordset("select Id from CreditsSent");
  for (; !rows->eof(); rows->moveNext()) creditsSent_.insert(rows->get(std::size_t{0}).toInt32());
}

std::vector<LedgerController> LedgerView::retired() const {
  std::vector<LedgerController> retired;
  const auto rows = file_.database().openRecordset(
      std::string("select ") + ledgerControllerColumns +
      " from Controllers where Retired is not null order by Retired desc, Id desc");
  for (; !rows->eof(); rows->moveNext()) retired.push_back(ledgerController(*rows));
  return retired;
}

Holdings LedgerView::holdings(const ControllerPlace& place) const {
  const LedgerController* controller = controllers_.find(place);
  return controller == nullptr ? Holdings() : readHoldings(file_, *controller);
}

void LedgerView::narrowTo(std::int32_t number) {
  narrow_ = Narrow{number, {}, {}};
  std::string things;
  std::string digests;
  const auto add = [](std::string& ids, std::int32_t id) {
    ids += (ids.empty() ? "" : ",") + std::to_string(id);
  };
  for (const auto& [place, controller] : controllers_.all()) {
    for (const std::int32_t slot : {number, slotOfOthers(ThingKind::card)})
      add(things, controller.id * slotsOfController + slot);
    add(digests, controller.id * bucketsOfController + bucketOfThings);
  }
  if (things.empty()) return;
  const auto rows =
      file_.database().openRecordset("select Id, State from Things where Id in (" + things + ")");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int32_t id = rows->get(std::size_t{0}).toInt32();
    addThing(id % slotsOfController, rows->get(std::size_t{1}).toText(),
             narrow_->cards[id / slotsOfController]);
  }
  const auto known =
      file_.database().openRecordset("select Id, Digest from Digests where Id in (" + digests + ")");
  for (; !known->eof(); known->moveNext()) {
    narrow_->digests[known->get(std::size_t{0}).toInt32() / bucketsOfController] =
        digestOf(known->get(std::size_t{1}).toText());
  }
}

Holdings LedgerView::holdings(const ControllerPlace& place, const SlotRange& slots) const {
  Holdings part;
  const LedgerController* controller = controllers_.find(place);
  if (controller == nullptr) return part;
  if (narrow_ && slots.first == narrow_->number && slots.end == narrow_->number + 1) {
    const auto known = narrow_->cards.find(controller->id);
    return known == narrow_->cards.end() ? part : known->second;
  }
  readThings(file_, *controller, slots, part);
  readThings(file_, *controller, slotsOfOthers, part);
  return part;
}

std::vector<LedgerView::HeldCode> LedgerView::heldCodes(const std::set<std::int32_t>& numbers,
                                                        const std::set<std::string>& codes) const {
  std::map<std::int32_t, ControllerPlace> places;
  std::string ids;
  for (const auto& [place, controller] : controllers_.all()) {
    places[controller.id] = place;
    for (const std::int32_t number : numbers)
      ids += (ids.empty() ? "" : ",") + std::to_string(controller.id * slotsOfController + number);
  }
  std::vector<HeldCode> held;
  if (places.empty() || (numbers.empty() && codes.empty())) return held;
  // Codes lie anywhere: comparing them here is ten times as fast as a condition of the query.
  const std::string condition = codes.empty() ? " where Id in (" + ids + ")" : "";
  const auto isAsked = [&](const std::string& code) { return codes.contains(code); };
  const auto take = [&](const Value* row) {
    const std::int32_t id = row[0].toInt32();
    const std::int32_t slot = id % slotsOfController;
    const auto place = places.find(id / slotsOfController);
    if (place == places.end() || slot >= firstSlotBehindCards) return true;
    const Possible code = CardState::codeOf(row[1].toText());
    HeldCode card{place->second, slot, code.since()};
    card.codes.push_back(code.last());
    std::erase(card.codes, "");
    const bool asked = numbers.contains(slot) || std::any_of(card.codes.begin(), card.codes.end(), isAsked);
    if (asked && !card.codes.empty()) held.push_back(std::move(card));
    return true;
  };
  file_.database().visitRows("select Id, State from Things" + condition, take);
  return held;
}

bool LedgerView::knowsNothingOf(const ControllerPlace& place) const {
  const LedgerController* controller = controllers_.find(place);
  if (controller == nullptr) return true;
  const std::int32_t base = controller->id * slotsOfController;
  const auto any = [&](const SlotRange& slots) {
    return !file_.database()
                .openRecordset("select top 1 Id from Things where Id between " +
                               std::to_string(base + slots.first) + " and " +
                               std::to_string(base + slots.end - 1))
                ->eof();
  };
  // A badge format may be there that it is to get from the controller before it.
  const SlotRange formats = slotsOf(ThingKind::badgeFormat);
  return !any({0, formats.first}) && !any({formats.end, slotsOfController});
}

std::map<std::int32_t, std::uint64_t> LedgerView::digests(const ControllerPlace& place) const {
  std::map<std::int32_t, std::uint64_t> digests;
  const LedgerController* controller = controllers_.find(place);
  if (controller == nullptr) return digests;
  if (narrow_) {
    const auto known = narrow_->digests.find(controller->id);
    if (known != narrow_->digests.end()) digests[bucketOfThings] = known->second;
    return digests;
  }
  const std::int32_t first = controller->id * bucketsOfController;
  const auto rows = file_.database().openRecordset(
      "parameters pFirst long, pLast long; select Id, Digest from Digests where Id between pFirst and pLast",
      {{"pFirst", first}, {"pLast", first + bucketsOfController - 1}});
  for (; !rows->eof(); rows->moveNext())
    digests[rows->get(std::size_t{0}).toInt32() - first] = digestOf(rows->get(std::size_t{1}).toText());
  return digests;
}

void LedgerView::note(const ControllerPlace& place, std::int32_t bucket, std::uint64_t digest) const {
  const LedgerController* controller = controllers_.find(place);
  if (!keeps_ || controller == nullptr) return;
  const std::int32_t id = controller->id * bucketsOfController + bucket;
  file_.deleteDigests().execute({id, id});
  file_.insertDigest().execute({id, textOf(digest)});
}

std::optional<bool> LedgerView::fourIntervals() const {
  return fourIntervalsOf(file_.database());
}

}  // namespace voxa
