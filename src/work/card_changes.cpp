#include "work/card_changes.h"

#include <map>

#include "comm/com.h"
#include "controllers/image.h"
#include "files/conversions.h"
#include "lines/code.h"
#include "platform/database/database.h"
#include "platform/observer.h"
#include "work/card_history.h"
#include "work/forget_cards.h"
#include "work/group_reach.h"
#include "work/held_codes.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa {

namespace {

std::string shown(const Value& value) {
  if (value.isNull()) return "none";
  if (const auto* flag = std::get_if<bool>(&value.data())) return *flag ? "yes" : "no";
  return value.toText();
}

bool isOfCard(std::int32_t number) {
  return number >= 1 && number <= greatestCardNumber;
}

std::unique_ptr<Recordset> rowOf(Installation& installation, std::int32_t id) {
  return installation.database().openRecordset(
      "parameters pId long; select * from Cardholders where Id = pId", {{"pId", id}});
}

}  // namespace

CardChanges::CardChanges(Installation& installation) : installation_(installation), groups_(installation) {}

void CardChanges::change(const Recordset& card, CardValues values, std::size_t line) {
  Change change;
  change.line = line;
  change.id = card.get("Id").toInt32();
  change.number = card.get("CardNum");
  change.name = card.get("Name");
  change.code = card.get("CardCode");
  change.group = card.get("AccessGroupId");
  const std::int16_t group = nullToInt(change.group);
  change.renumbered = values.number && shown(change.number) != std::to_string(*values.number);
  change.recoded = values.code && !isCode(change.code, *values.code);
  change.renamed = values.name && shown(change.name) != *values.name;
  change.moves = change.renumbered || change.recoded || (values.group && *values.group != group);
  const auto differ = [&](const char* column, const std::string& before, const std::string& after) {
    if (before == after) return;
    change.differences.push_back({change.number, change.name.toText(), column, before, after});
  };
  const auto compare = [&](const char* column, const char* field, const auto& value) {
    if (value) differ(column, shown(card.get(field)), shown(Value(*value)));
  };
  if (change.renumbered) differ("number", shown(change.number), std::to_string(*values.number));
  compare("name", "Name", values.name);
  if (change.recoded)
    differ("code", change.code.isNull() ? "none" : shownCode(change.code.toText()), *values.code);
  if (values.group) differ("group", groups_.name(group), groups_.name(*values.group));
  if (values.pin && shown(card.get("PINCode")) != shown(*values.pin)) {
    differ("pin", card.get("PINCode").isNull() ? "none" : "another", values.pin->isNull() ? "none" : "given");
  }
  compare("until", "ValidationDate", values.until);
  if (values.credit) {
    const std::string after = shown(*values.credit);
    differ("credit", shown(card.get("Credit")), after == shown(card.get("Credit")) ? after + " anew" : after);
  }
  compare("supervisor", "Supervisor", values.supervisor);
  compare("valid", "Validated", values.valid);
  compare("note", "Free", values.note);
  change.values = std::move(values);
  changes_.push_back(std::move(change));
}

void CardChanges::add(CardValues values, std::size_t line) {
  added_.push_back({std::move(values), line});
}

std::vector<CardDifference> CardChanges::differences() const {
  std::vector<CardDifference> all;
  for (const Change& change : changes_)
    all.insert(all.end(), change.differences.begin(), change.differences.end());
  return all;
}

TakenByCards CardChanges::takenAfterwards(
    const std::function<void(std::size_t line, const Refusal& clash)>& onClash) const {
  std::set<std::int32_t> changing;
  for (const Change& change : changes_) changing.insert(change.id);
  TakenByCards taken(installation_, changing);
  for (const Change& change : changes_) {
    CardValues staying;
    if (!change.values.number && !change.number.isNull() && isOfCard(change.number.toInt32()))
      staying.number = change.number.toInt16();
    if (!change.values.name) staying.name = change.name.toText();
    if (!change.values.code && !change.code.isNull()) staying.code = change.code.toText();
    taken.take(staying, change.name.toText());
  }
  const auto take = [&](const CardValues& values, std::size_t line, const std::string& name) {
    try {
      taken.requireFree(values);
      taken.take(values, line == 0 ? name : "line " + std::to_string(line));
    } catch (const Refusal& clash) {
      onClash(line, clash);
    }
  };
  for (const Change& change : changes_) take(change.values, change.line, change.name.toText());
  for (const auto& [values, line] : added_) take(values, line, values.name.value_or(""));
  return taken;
}

void CardChanges::visitClashes(
    const std::function<void(std::size_t line, const Refusal& clash)>& onClash) const {
  (void)takenAfterwards(onClash);
}

void CardChanges::carryOut(Observer* observer) {
  TakenByCards taken =
      takenAfterwards([](std::size_t /*line*/, const Refusal& clash) { throw Refusal(clash); });
  for (auto& [values, line] : added_) {
    if (values.number) continue;
    values.number = taken.freeNumber();
    taken.take(values, values.name.value_or(""));
  }
  requireHeldByNoOther(true);
  eraseWhatIsLost();
  // Where nothing is sent on purpose nothing could be erased.
  if (!installation_.Com().inhibitCom) requireHeldByNoOther(false);
  std::vector<std::int32_t> credits;
  std::size_t done = 0;
  Transaction transaction(installation_.engine(), installation_.database());
  for (const Change& change : changes_) {
    if (change.renumbered || change.renamed) keepCardHistory(installation_, *rowOf(installation_, change.id));
  }
  if (changes_.size() > 1) {
    for (const Change& change : changes_) freeOldValues(change);
  }
  const std::size_t all = changes_.size() + added_.size();
  for (const Change& change : changes_) {
    write(change);
    if (change.values.credit && !change.number.isNull()) credits.push_back(change.number.toInt32());
    if (observer != nullptr) observer->progress("Changing", ++done, all);
  }
  const auto rows = installation_.database().openRecordset("select * from Cardholders where Id = 0");
  for (const auto& [values, line] : added_) {
    write(values, *rows);
    if (observer != nullptr) observer->progress("Importing", ++done, all);
  }
  transaction.commit();
  // Also those controllers count anew that have got the last one.
  if (!credits.empty()) installation_.ledger().endCredits(credits);
}

void CardChanges::requireHeldByNoOther(bool beforeErasing) const {
  std::vector<CardIdentity> cards;
  std::set<std::int32_t> erased;
  for (const Change& change : changes_) {
    if (!change.renumbered && !change.recoded) continue;
    const std::int32_t before = change.number.isNull() ? 0 : change.number.toInt32();
    if (beforeErasing) erased.insert(before);
    const std::string code =
        change.values.code || change.code.isNull() ? change.values.code.value_or("") : change.code.toText();
    cards.push_back({change.renumbered ? *change.values.number : before, code, change.renumbered});
  }
  // Those that are added are the same behind it.
  if (!beforeErasing && cards.empty()) return;
  for (const auto& [values, line] : added_)
    cards.push_back({values.number.value_or(0), values.code.value_or(""), true});
  const HeldCodes held(installation_, cards);
  for (const CardIdentity& card : cards) held.requireFree(card, erased);
}

std::vector<CardValues> CardChanges::newCards() const {
  std::vector<CardValues> cards;
  for (const auto& [values, line] : added_) cards.push_back(values);
  return cards;
}

void CardChanges::eraseWhatIsLost() {
  std::map<std::int16_t, std::vector<ReachedController>> reaches;
  const auto reach = [&](std::int16_t group) -> const std::vector<ReachedController>& {
    const auto [known, added] = reaches.try_emplace(group);
    if (added) known->second = reachOf(installation_, group);
    return known->second;
  };
  // By the group that they leave, and the one that they get; none for cards that are others then.
  std::map<std::pair<std::int16_t, std::optional<std::int16_t>>, std::vector<std::int32_t>> lost;
  for (const Change& change : changes_) {
    if (!change.moves || change.number.isNull()) continue;
    const bool another = change.renumbered || change.recoded;
    const auto kept = another ? std::nullopt : change.values.group;
    lost[{nullToInt(change.group), kept}].push_back(change.number.toInt32());
  }
  ForgetCards forget(installation_);
  for (const auto& [groups, numbers] : lost) {
    const auto kept = groups.second ? reach(*groups.second) : std::vector<ReachedController>();
    forget.on(without(reach(groups.first), kept), numbers);
  }
  forget.send();
}

// Cards may exchange their names or codes: no two may have the same on the way.
void CardChanges::freeOldValues(const Change& change) {
  if (!change.renamed && !change.recoded) return;
  const auto row = rowOf(installation_, change.id);
  row->edit();
  if (change.recoded) row->set("CardCode", Value());
  if (change.renamed) row->set("Name", "\x01" + std::to_string(change.id));
  row->update();
}

void CardChanges::write(const Change& change) {
  const CardValues& values = change.values;
  const auto row = rowOf(installation_, change.id);
  if (change.renumbered) keepHistoryOfNumber(installation_, *values.number);
  row->edit();
  // Of a blocked card a controller need hold nothing.
  const bool validAgain = values.valid && *values.valid && !row->get("Validated").toBool();
  values.set(*row);
  if (change.moves || validAgain) markWhole(*row);
  row->update();
}

void CardChanges::write(const CardValues& values, Recordset& rows) {
  keepHistoryOfNumber(installation_, *values.number);
  rows.addNew();
  values.set(rows);
  markWhole(rows);
  rows.update();
}

}  // namespace voxa
