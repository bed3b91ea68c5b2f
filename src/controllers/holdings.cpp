#include "controllers/holdings.h"

#include <algorithm>
#include <set>

#include "controllers/digest.h"
#include "controllers/thing_slot.h"

namespace voxa {

namespace {

// The things of a controller that some lines touch: read together, changed, written where they differ.
class TouchedThings {
 public:
  TouchedThings(const LedgerFile& file, std::int32_t controller, const std::set<std::int32_t>& slots)
      : file_(file), controller_(controller), base_(controller * slotsOfController) {
    const std::int32_t first = slots.empty() ? slotsOfOthers.first : *slots.begin();
    const std::int32_t last = slots.empty() ? slotsOfOthers.first : *slots.rbegin();
    // One query for things that lie together, as the cards of a block do.
    if (static_cast<std::size_t>(last - first) <= 4 * slots.size() + 16) {
      read(first, last);
    } else {
      for (const std::int32_t slot : slots) read(slot, slot);
    }
  }

  /// And what is known of all others of a kind.
  void read(std::int32_t first, std::int32_t last) {
    const auto rows = file_.database().openRecordset(
        "parameters pFirst long, pLast long, pOthers long, pLastOthers long; select Id, State from Things "
        "where Id between pFirst and pLast or Id between pOthers and pLastOthers",
        {{"pFirst", base_ + first},
         {"pLast", base_ + last},
         {"pOthers", base_ + slotsOfOthers.first},
         {"pLastOthers", base_ + slotsOfOthers.end - 1}});
    for (; !rows->eof(); rows->moveNext()) {
      stored_[rows->get(std::size_t{0}).toInt32() - base_] = rows->get(std::size_t{1}).toText();
    }
  }

  void take(const SentLine& line, bool certain) {
    if (line.kind == ThingKind::card) return card(line.number).take(line, certain);
    Possible& state = thing(slotOf(line.kind, line.number));
    certain ? state.becomes(line.value) : state.mayBecome(line.value);
  }
  // Its value is one that cannot be kept.
  void mayBeAnything(const SentLine& line) {
    if (line.kind != ThingKind::card) return thing(slotOf(line.kind, line.number)).mayBeAnything();
    line.field == CardField::code ? card(line.number).mayBeAnything()
                                  : card(line.number).part(line.field).mayBeAnything();
  }
  void mayBeAnything(ThingKind kind) {
    const SlotRange range = slotsOf(kind);
    read(range.first, range.end - 1);
    for (auto stored = stored_.lower_bound(range.first); stored != stored_.end() && stored->first < range.end;
         ++stored) {
      if (kind == ThingKind::card) {
        (void)card(stored->first);
      } else {
        (void)thing(stored->first);
      }
    }
    if (kind == ThingKind::card) {
      for (auto& [number, state] : cards_) state.mayBeAnything();
    }
    for (auto& [slot, state] : things_) {
      if (slot >= range.first && slot < range.end) state.mayBeAnything();
    }
    things_[slotOfOthers(kind)] = Possible::unknown();
  }

  void write() {
    for (const auto& [slot, state] : cards_) write(slot, state.text());
    for (const auto& [slot, state] : things_) write(slot, state.text());
    for (const std::int32_t bucket : changed_) {
      const std::int32_t id = controller_ * bucketsOfController + bucket;
      file_.deleteDigests().execute({id, id});
    }
  }

 private:
  template <typename State>
  State& touched(std::map<std::int32_t, State>& states, std::int32_t slot, ThingKind kind) {
    const auto [state, added] = states.try_emplace(slot);
    if (!added) return state->second;
    if (const auto stored = stored_.find(slot); stored != stored_.end()) {
      state->second = State::read(stored->second);
    } else if (stored_.contains(slotOfOthers(kind)) || things_.contains(slotOfOthers(kind))) {
      state->second.mayBeAnything();
    }
    return state->second;
  }
  CardState& card(std::int32_t number) { return touched(cards_, number, ThingKind::card); }
  Possible& thing(std::int32_t slot) { return touched(things_, slot, kindOf(slot)); }

  void write(std::int32_t slot, const std::string& text) {
    const auto stored = stored_.find(slot);
    if (stored == stored_.end()) {
      file_.insertThing().execute({base_ + slot, text});
    } else if (stored->second != text) {
      file_.updateThing().execute({text, base_ + slot});
    } else {
      return;
    }
    noteChange(slot);
  }
  void noteChange(std::int32_t slot) {
    if (slot < firstSlotBehindCards) {
      changed_.insert(bucketOfCard(slot));
    } else if (slot == slotOfOthers(ThingKind::card)) {
      for (std::int32_t bucket = 0; bucket < cardBuckets; ++bucket) changed_.insert(bucket);
    } else {
      changed_.insert(bucketOfThings);
    }
  }

  const LedgerFile& file_;
  std::int32_t controller_;
  std::int32_t base_;
  std::set<std::int32_t> changed_;  // buckets
  std::map<std::int32_t, std::string> stored_;
  std::map<std::int32_t, CardState> cards_;
  std::map<std::int32_t, Possible> things_;
};

void keepNotUnderstood(Database& ledger, const LedgerController& controller, std::string_view line,
                       DateTime now) {
  const std::string text(line.substr(0, 255));
  const auto rows = ledger.openRecordset(
      "parameters pId long, pLine memo; select * from NotUnderstood where ControllerId = pId and Line = "
      "pLine",
      {{"pId", controller.id}, {"pLine", text}});
  if (rows->eof()) {
    rows->addNew();
    rows->set("ControllerId", controller.id);
    rows->set("Line", text);
  } else {
    rows->edit();
  }
  rows->set("Sent", now);
  rows->update();
}

}  // namespace

void takeLines(const LedgerFile& file, const LedgerController& controller, const std::vector<SentLines>& sent,
               DateTime now) {
  std::vector<std::pair<SentLine, bool>> lines;
  std::set<std::int32_t> slots;
  for (const SentLines& each : sent) {
    for (const std::string_view text : each.lines) {
      SentLine line = sentLine(text, controller.type);
      const bool ofThing = line.fit <= SentLine::Fit::anyValue;
      if (ofThing) slots.insert(slotOf(line.kind, line.number));
      if (line.fit == SentLine::Fit::notUnderstood) keepNotUnderstood(file.database(), controller, text, now);
      lines.emplace_back(std::move(line), each.certain);
    }
  }
  TouchedThings things(file, controller.id, slots);
  for (const auto& [line, certain] : lines) {
    switch (line.fit) {
      case SentLine::Fit::certain:
        things.take(line, certain);
        break;
      case SentLine::Fit::doubtful:
        things.take(line, false);
        break;
      case SentLine::Fit::anyValue:
        things.mayBeAnything(line);
        break;
      case SentLine::Fit::wholeKind:
        things.mayBeAnything(line.kind);
        break;
      case SentLine::Fit::lineSpeed:
      case SentLine::Fit::notUnderstood:
        break;
    }
  }
  things.write();
}

CardState Holdings::card(std::int32_t number) const {
  if (const auto known = cards.find(number); known != cards.end()) return known->second;
  CardState state;
  if (unknownOthers.contains(ThingKind::card)) state.mayBeAnything();
  return state;
}

Possible Holdings::thing(ThingKind kind, std::int32_t number) const {
  if (const auto known = things.find({kind, number}); known != things.end()) return known->second;
  return unknownOthers.contains(kind) ? Possible::unknown() : Possible();
}

void addThing(std::int32_t slot, const std::string& state, Holdings& holdings) {
  if (slot < firstSlotBehindCards) {
    holdings.cards.emplace_hint(holdings.cards.end(), slot, CardState::read(state));
    return;
  }
  const ThingKind kind = kindOf(slot);
  if (slot == slotOfOthers(kind)) {
    holdings.unknownOthers.insert(kind);
  } else {
    holdings.things[{kind, slot - slotsOf(kind).first}] = Possible::read(state);
  }
}

void readThings(const LedgerFile& file, const LedgerController& controller, const SlotRange& slots,
                Holdings& holdings) {
  const std::int32_t base = controller.id * slotsOfController;
  const auto rows = file.database().openRecordset(
      "parameters pFirst long, pLast long; select Id, State from Things where Id between pFirst and pLast "
      "order by Id",
      {{"pFirst", base + slots.first}, {"pLast", base + slots.end - 1}});
  for (; !rows->eof(); rows->moveNext())
    addThing(rows->get(std::size_t{0}).toInt32() - base, rows->get(std::size_t{1}).toText(), holdings);
}

Holdings readHoldings(const LedgerFile& file, const LedgerController& controller) {
  Holdings holdings;
  readThings(file, controller, allSlots, holdings);
  const auto others = file.database().openRecordset("select Line from NotUnderstood where ControllerId = " +
                                                    std::to_string(controller.id) + " order by Sent, Id");
  for (; !others->eof(); others->moveNext()) holdings.notUnderstood.push_back(others->get("Line").toText());
  return holdings;
}

void noteAnything(const LedgerFile& file, const LedgerController& controller) {
  const std::int32_t base = controller.id * slotsOfController;
  for (std::int32_t slot = slotsOfOthers.first; slot < slotsOfOthers.end; ++slot)
    file.insertThing().execute({base + slot, Possible::unknown().text()});
}

}  // namespace voxa
