#include "work/deleted_cards.h"

#include <set>
#include <vector>

#include "access/card_record.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "work/card_history.h"
#include "work/card_values.h"
#include "work/held_codes.h"
#include "work/installation.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::int16_t defaultGroup = 0;

std::string called(const Recordset& card) {
  const Value number = card.get("CardNum");
  const std::string name = card.get("Name").toText();
  return number.isNull() ? name : "card " + number.toText() + " (" + name + ")";
}

/// The row of a deleted card. A Refusal for a number that several of them had.
std::unique_ptr<Recordset> deletedCard(Installation& installation, const std::string& card) {
  std::unique_ptr<Recordset> row;
  try {
    row = cardNamed(installation, card, true);
  } catch (const Refusal&) {
    try {
      row = cardNamed(installation, card);
    } catch (const Refusal&) {
      throw Refusal("there is no deleted card " + card);
    }
    throw Refusal(called(*row) + " is not deleted");
  }
  std::vector<std::string> all;
  for (; !row->eof(); row->moveNext()) all.push_back(row->get("Name").toText());
  if (all.size() > 1)
    throw Refusal("several deleted cards had the number " + card + ", name one:" + eachOnALine(all));
  row->moveFirst();
  return row;
}

bool isInUse(Installation& installation, std::int32_t number) {
  return !installation.database()
              .openRecordset(
                  "parameters pNumber long; select Id from Cardholders where CardNum = pNumber and Deleted = "
                  "false",
                  {{"pNumber", number}})
              ->eof();
}

/// Of the cards in use, those to which other programs have given that code, too.
std::set<std::int32_t> numbersWithCode(Installation& installation, const Value& code) {
  std::set<std::int32_t> numbers;
  if (code.isNull()) return numbers;
  const auto rows = installation.database().openRecordset(
      "parameters pCode memo; select CardNum from Cardholders where Deleted = false and CardNum is not null "
      "and CardCode = pCode",
      {{"pCode", code}});
  for (; !rows->eof(); rows->moveNext()) numbers.insert(rows->get("CardNum").toInt32());
  return numbers;
}

void requireErased(Installation& installation, std::int32_t number, const std::string& card,
                   const std::string& then) {
  const std::vector<std::string> holders = holdersOf(installation, number);
  if (holders.empty()) return;
  throw Refusal("these controllers may still hold " + card + ":" + eachOnALine(holders) +
                "\n'voxa download' makes them erase it. " + then);
}

}  // namespace

std::int16_t restoreCard(Installation& installation, const std::string& card, const Restoring& how) {
  const auto row = deletedCard(installation, card);
  const std::int32_t id = row->get("Id").toInt32();
  const Value had = row->get("CardNum");
  CardValues values;
  values.number = how.number     ? cardNumber(*how.number)
                  : had.isNull() ? TakenByCards(installation, {id}).freeNumber()
                                 : cardNumber(had.toText());
  const std::string name = row->get("Name").toText();
  try {
    TakenByCards(installation, {id}).requireFree(values);
  } catch (const Refusal& refusal) {
    throw Refusal(name + " cannot have the number " + std::to_string(*values.number) +
                  " again, which another card has " + refusal.what() + ": give it another one with --number");
  }
  if (how.group) {
    values.group = GroupNames(installation).id(*how.group);
  } else if (nullToInt(row->get("AccessGroupId")) == defaultGroup) {
    throw Refusal(name + " is in the access group " + GroupNames(installation).name(defaultGroup) +
                  ", as are all deleted cards whose group is gone: say with --group where it is to open");
  }
  const bool renumbered = !had.isNull() && had.toInt32() != *values.number;
  // A controller that has it under the old number would go on opening to it, as the card of whoever gets
  // that.
  if (renumbered && !isInUse(installation, had.toInt32()))
    requireErased(installation, had.toInt32(), called(*row), "Then it can get another number");
  const Value code = row->get("CardCode");
  const CardIdentity restored{*values.number, code.isNull() ? "" : code.toText(), renumbered || had.isNull()};
  HeldCodes(installation, {restored}).requireFree(restored);
  Transaction transaction(installation.engine(), installation.database());
  if (had.isNull() || had.toInt32() != *values.number) {
    keepCardHistory(installation, *row);
    keepHistoryOfNumber(installation, *values.number);
  }
  row->edit();
  row->set("Deleted", false);
  values.set(*row);
  markWhole(*row);
  row->update();
  transaction.commit();
  return *values.number;
}

Purge requirePurgeable(Installation& installation, const std::string& card) {
  const auto row = deletedCard(installation, card);
  const Value number = row->get("CardNum");
  const bool marked = row->get("CardCodeFlagD").toBool();
  // Who has the number now got it when every controller had erased this card.
  const bool numberIsItsOwn = !number.isNull() && !isInUse(installation, number.toInt32());
  constexpr const char* then = "Then it can be purged";
  if (numberIsItsOwn) {
    requireErased(installation, number.toInt32(), called(*row), then);
    if (marked && !installation.ledger().open())
      throw Refusal("a controller may still hold " + called(*row) +
                    ": 'voxa download' makes it erase the card");
  }
  // Under whatever number: it may have had another one.
  const Value code = row->get("CardCode");
  const CardIdentity gone{0, code.isNull() ? "" : code.toText()};
  HeldCodes(installation, {gone}).requireFree(gone, numbersWithCode(installation, code));
  return {row->get("Id").toInt32(), called(*row)};
}

void purgeCard(Installation& installation, const Purge& purge) {
  Transaction transaction(installation.engine(), installation.database());
  const auto row = installation.database().openRecordset(
      "parameters pId long; select * from Cardholders where Id = pId and Deleted = true",
      {{"pId", purge.id}});
  if (row->eof()) throw Refusal(purge.card + " is not deleted any more");
  keepCardHistory(installation, *row);
  row->remove();
  transaction.commit();
}

}  // namespace voxa
