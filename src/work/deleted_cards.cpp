#include "work/deleted_cards.h"

#include <set>
#include <vector>

#include "access/card_record.h"
#include "comm/com.h"
#include "controllers/ledger_view.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "work/card_history.h"
#include "work/card_values.h"
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

/// Controllers that may hold a card of that number.
std::vector<std::string> holdersOf(Installation& installation, std::int32_t number) {
  std::vector<ControllerPlace> places;
  (void)installation.ledger().look([&](const LedgerView& ledger) {
    for (const auto& [place, controller] : ledger.controllers().all()) {
      if (!ledger.holdings(place).card(number).part(CardField::code).is("")) places.push_back(place);
    }
  });
  std::vector<std::string> names;
  for (const ControllerPlace& place : places)
    names.push_back(installation.Com().getName(place.station, place.address));
  return names;
}

bool isInUse(Installation& installation, std::int32_t number) {
  return !installation.database()
              .openRecordset(
                  "parameters pNumber long; select Id from Cardholders where CardNum = pNumber and Deleted = "
                  "false",
                  {{"pNumber", number}})
              ->eof();
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
  if (!number.isNull() && !isInUse(installation, number.toInt32())) {
    const std::vector<std::string> holders = holdersOf(installation, number.toInt32());
    if (!holders.empty()) {
      throw Refusal("these controllers may still hold " + called(*row) + ":" + eachOnALine(holders) +
                    "\n'voxa download' makes them erase it. Then it can be purged");
    }
    if (marked && !installation.ledger().open())
      throw Refusal("a controller may still hold " + called(*row) +
                    ": 'voxa download' makes it erase the card");
  }
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
