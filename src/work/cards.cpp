#include "work/cards.h"

#include <algorithm>
#include <functional>

#include "access/card_record.h"
#include "files/conversions.h"
#include "lines/code.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "work/forget_cards.h"
#include "work/group_reach.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/suggestions.h"

namespace voxa {

namespace {

CardRow rowOf(const Recordset& card, const GroupNames& groups) {
  const Value pin = card.get("PINCode");
  const Value group = card.get("AccessGroupId");
  return {card.get("CardNum"),
          card.get("Name"),
          card.get("CardCode"),
          group.isNull() ? Value() : Value(groups.name(group.toInt16())),
          card.get("Validated"),
          card.get("Supervisor"),
          card.get("ValidationDate"),
          card.get("Credit"),
          pin.isNull() ? "" : zeroPadded(pin.toInt32(), 4),
          cardRecord(card).parts.any()};
}

std::vector<CardRow> rowsOf(Recordset& cards, const GroupNames& groups,
                            const std::function<bool(const Recordset&)>& wanted) {
  std::vector<CardRow> rows;
  for (; !cards.eof(); cards.moveNext()) {
    if (wanted(cards)) rows.push_back(rowOf(cards, groups));
  }
  return rows;
}

/// A number or code as people compare them: without regard to case and to zeros in front.
std::string significant(const std::string& text) {
  const std::string digits = toLower(shownCode(text));
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

}  // namespace

std::int16_t addCard(Installation& installation, const CardTexts& texts) {
  CardTexts whole = texts;
  for (auto* needed : {&whole.name, &whole.code, &whole.group}) *needed = needed->value_or("");
  CardValues values(whole, GroupNames(installation), installation.clock());
  TakenByCards taken(installation);
  taken.requireFree(values);
  if (!values.number) values.number = taken.freeNumber();
  const auto rows = installation.database().openRecordset("select * from Cardholders where Id = 0");
  rows->addNew();
  values.set(*rows);
  markWhole(*rows);
  rows->update();
  return *values.number;
}

void changeCard(Installation& installation, const std::string& card, const CardTexts& texts) {
  const auto row = cardNamed(installation, card);
  const CardValues values(texts, GroupNames(installation), installation.clock());
  TakenByCards(installation, row->get("Id").toInt32()).requireFree(values);
  const std::int16_t group = nullToInt(row->get("AccessGroupId"));
  const std::int32_t number = row->get("CardNum").toInt32();
  const bool another = (values.number && *values.number != number) ||
                       (values.code && !isCode(row->get("CardCode"), *values.code));
  const bool moves = another || (values.group && *values.group != group);
  if (moves) {
    std::vector<ReachedController> kept;
    if (!another) kept = reachOf(installation, *values.group);
    ForgetCards forget(installation);
    forget.on(without(reachOf(installation, group), kept), {number});
    forget.send();
  }
  row->edit();
  values.set(*row);
  if (moves) markWhole(*row);
  row->update();
  // Also those controllers count anew that have got the last one.
  if (values.credit) installation.ledger().endCredits({number});
}

std::vector<CardRow> listCards(Installation& installation, const std::optional<std::string>& group,
                               bool deleted) {
  const GroupNames groups(installation);
  const auto all = [](const Recordset& /*card*/) { return true; };
  if (!group) {
    const auto cards = installation.database().openRecordset(
        "parameters pDeleted bit; select * from Cardholders where Deleted = pDeleted order by CardNum",
        {{"pDeleted", deleted}});
    return rowsOf(*cards, groups, all);
  }
  const auto cards = installation.database().openRecordset(
      "parameters pDeleted bit, pGroup long; select * from Cardholders where Deleted = pDeleted and "
      "AccessGroupId = pGroup order by CardNum",
      {{"pDeleted", deleted}, {"pGroup", groups.id(*group)}});
  return rowsOf(*cards, groups, all);
}

std::vector<CardRow> findCards(Installation& installation, const std::string& text) {
  const std::string part = toLower(text);
  const std::string number = significant(text);
  const auto is = [&](const Value& value) {
    return !value.isNull() && !text.empty() && significant(value.toText()) == number;
  };
  const auto cards = installation.database().openRecordset(
      "select * from Cardholders where Deleted = false order by CardNum");
  std::vector<CardRow> found = rowsOf(*cards, GroupNames(installation), [&](const Recordset& card) {
    return is(card.get("CardNum")) || is(card.get("CardCode")) ||
           toLower(card.get("Name").toText()).find(part) != std::string::npos;
  });
  if (found.empty()) {
    throw notFound("msgCantFindCardholder", text,
                   namesOf(installation, "select Name from Cardholders where Deleted = false"));
  }
  return found;
}

}  // namespace voxa
