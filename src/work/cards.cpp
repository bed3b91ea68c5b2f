#include "work/cards.h"

#include "platform/clock.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/suggestions.h"

namespace voxa {

std::int16_t addCard(Installation& installation, const CardTexts& texts) {
  CardTexts whole = texts;
  for (auto* needed : {&whole.name, &whole.code, &whole.group}) *needed = needed->value_or("");
  CardChanges changes(installation);
  changes.add(CardValues(whole, GroupNames(installation), installation.clock()));
  changes.carryOut();
  return changes.newCards().front().number.value_or(0);
}

std::int16_t lendCard(Installation& installation, const CardTexts& texts) {
  const CardValues values(texts, GroupNames(installation), installation.clock());
  if (!values.until || values.until->isNull())
    throw Refusal("a card that is lent needs its last day: the day on which it comes back");
  requireLastDayToCome(installation, values);
  return addCard(installation, texts);
}

void changeCard(Installation& installation, const std::string& card, const CardTexts& texts) {
  const auto row = cardNamed(installation, card);
  CardTexts given = texts;
  if (given.remark && !given.name) given.name = row->get("Name").toText();
  CardChanges changes(installation);
  changes.change(*row, CardValues(given, GroupNames(installation), installation.clock()));
  changes.carryOut();
}

CardChanges changesOf(Installation& installation, const CardFilter& filter, const CardTexts& texts) {
  if (texts.name || texts.number || texts.code || texts.remark)
    throw Refusal("each card has a name, a number and a code of its own: name one card to change these");
  if (filter.deleted) throw Refusal("deleted cards are not changed: give them back first");
  const bool any = texts.group || texts.pin || texts.until || texts.credit || texts.supervisor ||
                   texts.valid || texts.note;
  if (!any) throw Refusal("nothing was said that is to change");
  const CardValues values(texts, GroupNames(installation), installation.clock());
  CardChanges changes(installation);
  const std::vector<CardRow> cards = listCards(installation, filter);
  if (cards.empty()) throw Refusal("no card is as the conditions say");
  for (const CardRow& card : cards) {
    const auto row = installation.database().openRecordset(
        "parameters pId long; select * from Cardholders where Id = pId", {{"pId", card.id}});
    if (!row->eof()) changes.change(*row, values);
  }
  return changes;
}

std::vector<CardRow> findCards(Installation& installation, const std::string& text, bool deleted) {
  std::vector<CardRow> cards = listCards(installation, {.text = text, .deleted = deleted});
  if (cards.empty()) {
    const std::string names = "select Name from Cardholders where Deleted = ";
    throw notFound("msgCantFindCardholder", text,
                   namesOf(installation, (names + (deleted ? "true" : "false")).c_str()));
  }
  return cards;
}

}  // namespace voxa
