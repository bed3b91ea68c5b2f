#include "work/card_blocking.h"

#include "access/card_record.h"
#include "platform/database/database.h"
#include "platform/error.h"
#include "work/card_history.h"
#include "work/card_values.h"
#include "work/carry_out.h"
#include "work/held_codes.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa {

namespace {

ToldCard named(const Recordset& card) {
  return {card.get("CardNum").isNull() ? 0 : card.get("CardNum").toInt32(), card.get("Name").toText()};
}

/// Tells the controllers of a card whose row has changed. The row is on the disk: whatever fails, the next
/// download goes on with it.
void tell(Installation& installation, ToldCard& card, PlanScope scope, const Telling& how) {
  scope.card = card.number;
  try {
    const CarriedOutPlan done = carryOut(installation, {.scope = scope, .dial = how.dial});
    for (const CarriedOut& controller : done.controllers) {
      if (controller.missing.empty()) continue;
      card.left.push_back(controller.name + (controller.reason.empty() ? "" : ": " + controller.reason));
    }
    for (const LeftOut& row : done.leftOut) card.left.push_back(row.row + ": " + row.reason);
  } catch (const Refusal& refusal) {
    card.notTold = refusal.what();
  } catch (const Error& failure) {
    card.notTold = failure.description();
  }
}

/// Tells the controllers of a card that is blocked, also of what they hold of it under a number that it had.
void tellBlocked(Installation& installation, ToldCard& card, const Value& code, const Telling& how) {
  tell(installation, card, {.erasesBlocked = true}, how);
  if (code.isNull() || !card.notTold.empty()) return;
  const HeldCodes held(installation, {{card.number, code.toText()}});
  for (const std::int32_t number : held.numbersOf(code.toText())) {
    if (number == card.number) continue;
    ToldCard before{number, card.name};
    tell(installation, before, {.erasesBlocked = true}, how);
    card.left.insert(card.left.end(), before.left.begin(), before.left.end());
    card.notTold = before.notTold;
  }
}

void setValid(Installation& installation, Recordset& card, bool valid) {
  Transaction transaction(installation.engine(), installation.database());
  card.edit();
  card.set("Validated", valid);
  markWhole(card);
  card.update();
  transaction.commit();
}

}  // namespace

ToldCard blockCard(Installation& installation, const std::string& card, const Telling& how) {
  const auto row = cardNamed(installation, card);
  setValid(installation, *row, false);
  ToldCard told = named(*row);
  tellBlocked(installation, told, row->get("CardCode"), how);
  return told;
}

ToldCard unblockCard(Installation& installation, const std::string& card, const Telling& how) {
  const auto row = cardNamed(installation, card);
  if (row->get("Validated").toBool()) throw Refusal(row->get("Name").toText() + " is not blocked");
  setValid(installation, *row, true);
  ToldCard told = named(*row);
  tell(installation, told, {}, how);
  return told;
}

ToldCard replaceCard(Installation& installation, const std::string& card, const CardTexts& texts,
                     const Telling& how) {
  if (!texts.code) throw Refusal("msgDBMandField", "(the code)");
  const auto row = cardNamed(installation, card);
  CardTexts given = texts;
  given.valid = "yes";
  const CardValues values(given, GroupNames(installation), installation.clock());
  requireLastDayToCome(installation, values);
  if (isCode(row->get("CardCode"), *values.code)) throw Refusal("this is the code of the card that it has");
  TakenByCards(installation, {row->get("Id").toInt32()}).requireFree(values);
  ToldCard told = named(*row);
  const bool renumbered = values.number && *values.number != told.number;
  const CardIdentity another{renumbered ? *values.number : told.number, *values.code, renumbered};
  HeldCodes(installation, {another}).requireFree(another);
  setValid(installation, *row, false);
  tellBlocked(installation, told, row->get("CardCode"), how);
  if (renumbered && (!told.left.empty() || !told.notTold.empty())) {
    throw Refusal(told.name +
                  " is blocked, but has its code and number still, since the old card is not erased:" +
                  eachOnALine(told.left) + (told.notTold.empty() ? "" : "\n  " + told.notTold) +
                  "\nReplace it without another number, or again when it is");
  }
  {
    Transaction transaction(installation.engine(), installation.database());
    if (renumbered || values.name) keepCardHistory(installation, *row);
    if (renumbered) keepHistoryOfNumber(installation, *values.number);
    row->edit();
    values.set(*row);
    markWhole(*row);
    row->update();
    transaction.commit();
  }
  ToldCard now = named(*row);
  tell(installation, now, {}, how);
  return now;
}

}  // namespace voxa
