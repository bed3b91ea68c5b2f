#include "work/card_history.h"

#include <algorithm>

#include "journal/journal_rows.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "work/installation.h"
#include "work/look_up.h"

namespace voxa {

namespace {

constexpr const char* table = "CardHistory";
constexpr int nameSize = 50;

void provideTable(Database& database) {
  if (hasTable(database, table)) return;
  TableDef made{table, {}, {}};
  addField(made, "CardId", DataType::Long);
  addField(made, "CardNum", DataType::Long);
  addField(made, "Name", DataType::Text, nameSize);
  made.fields.back().allowZeroLength = true;  // as other programs may have left it
  addField(made, "Until", DataType::Date);
  addIndex(made, "CardNum", {"CardNum"}, IndexKind::plain);
  database.createTable(made);
}

void append(Installation& installation, const Value& id, const Value& number, const Value& name) {
  provideTable(installation.database());
  (void)installation.database()
      .prepare(
          "parameters pId long, pNumber long, pName memo, pUntil datetime; insert into CardHistory "
          "(CardId, CardNum, Name, [Until]) values (pId, pNumber, pName, pUntil)")
      ->execute({id, number, name, installation.clock().now()});
}

template <typename Values, typename Value>
void addOnce(Values& values, const Value& value) {
  if (std::find(values.begin(), values.end(), value) == values.end()) values.push_back(value);
}

}  // namespace

void keepCardHistory(Installation& installation, const Recordset& card) {
  append(installation, card.get("Id"), card.get("CardNum"), card.get("Name"));
}

void keepHistoryOfNumber(Installation& installation, std::int32_t number) {
  const auto rows = installation.database().openRecordset(
      "parameters pNumber long; select Id, CardNum, Name from Cardholders where CardNum = pNumber and "
      "Deleted = true",
      {{"pNumber", number}});
  for (; !rows->eof(); rows->moveNext()) keepCardHistory(installation, *rows);
}

CardOwners::CardOwners(Installation& installation) {
  Database& database = installation.database();
  const Reading moment(database);
  if (hasTable(database, table)) {
    for (const auto rows = database.openRecordset("select * from CardHistory order by [Until]"); !rows->eof();
         rows->moveNext()) {
      const std::int32_t id = rows->get("CardId").toInt32();
      const Value number = rows->get("CardNum");
      take(id, number, rows->get("Name").toText(), false);
      if (!number.isNull()) past_[number.toInt32()].push_back({id, rows->get("Until").toDateTime()});
    }
  }
  // Of deleted cards with one number, which come first, the one counts that never gave it up. A card in use
  // counts before them.
  for (const auto rows =
           database.openRecordset("select Id, CardNum, Name, Deleted from Cardholders order by Deleted, Id");
       !rows->eof(); rows->moveNext()) {
    const std::int32_t id = rows->get("Id").toInt32();
    const Value number = rows->get("CardNum");
    take(id, number, rows->get("Name").toText(), true);
    if (number.isNull()) continue;
    const std::vector<Past>& past = past_[number.toInt32()];
    const bool gaveUp = std::any_of(past.begin(), past.end(), [&](const Past& one) { return one.id == id; });
    if (!rows->get("Deleted").toBool()) {
      present_[number.toInt32()] = id;
    } else if (!gaveUp || !present_.contains(number.toInt32())) {
      present_[number.toInt32()] = id;
    }
  }
}

void CardOwners::take(std::int32_t id, const Value& number, const std::string& name, bool present) {
  std::vector<std::string>& names = names_[id];
  std::erase(names, name);
  names.insert(names.begin(), name);
  if (!number.isNull()) addOnce(numbers_[id], number.toInt32());
  std::vector<std::int32_t>& ids = ids_[toLower(name)];
  if (present) std::erase(ids, id);
  if (present) ids.insert(ids.begin(), id);
  addOnce(ids, id);
}

std::int32_t CardOwners::ownerAt(std::int32_t number, DateTime moment) const {
  if (const auto past = past_.find(number); past != past_.end()) {
    for (const Past& one : past->second) {
      if (one.until.days > moment.days) return one.id;
    }
  }
  const auto now = present_.find(number);
  return now == present_.end() ? 0 : now->second;
}

std::vector<std::int32_t> CardOwners::idsOf(std::int32_t number) const {
  std::vector<std::int32_t> ids;
  if (const auto past = past_.find(number); past != past_.end()) {
    for (const Past& one : past->second) addOnce(ids, one.id);
  }
  if (const auto now = present_.find(number); now != present_.end()) addOnce(ids, now->second);
  return ids;
}

std::int32_t CardOwners::doer(std::int32_t number, DateTime moment, const std::string& storedName) const {
  const auto isStored = [&](const std::string& name) { return equalNoCase(journalName(name), storedName); };
  bool known = storedName == zeroPadded(number, 4);
  for (const std::int32_t id : idsOf(number)) {
    const std::vector<std::string> names = namesOf(id);
    known = known || std::any_of(names.begin(), names.end(), isStored);
  }
  return known ? ownerAt(number, moment) : 0;
}

std::vector<std::string> CardOwners::namesOf(std::int32_t id) const {
  const auto found = names_.find(id);
  return found == names_.end() ? std::vector<std::string>() : found->second;
}

std::vector<std::int32_t> CardOwners::numbersOf(std::int32_t id) const {
  const auto found = numbers_.find(id);
  return found == numbers_.end() ? std::vector<std::int32_t>() : found->second;
}

std::vector<std::int32_t> CardOwners::idsNamed(const std::string& name) const {
  const auto found = ids_.find(toLower(name));
  return found == ids_.end() ? std::vector<std::int32_t>() : found->second;
}

}  // namespace voxa
