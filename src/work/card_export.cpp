#include "work/card_export.h"

#include "platform/csv.h"
#include "platform/datetime.h"
#include "work/cards.h"

namespace voxa {

namespace {

std::string textOf(const Value& value) {
  return value.isNull() ? "" : value.toText();
}

/// 0 is none to a controller, and would not be taken back.
std::string creditOf(const CardRow& card) {
  return card.credit.isNull() || card.credit.toInt32() == 0 ? "" : card.credit.toText();
}

/// group: name of the one that the card is in.
std::string lineOf(const CardRow& card, const std::string& group, bool withPins) {
  const auto yesOrNo = [](const Value& value) { return value.toBool() ? "yes," : "no,"; };
  std::string line = textOf(card.number) + "," + csvField(card.name.toText()) + "," + textOf(card.code) +
                     "," + csvField(group) + ",";
  if (withPins) line += (card.pin == "0000" ? "" : card.pin) + ",";
  line += (card.until.isNull() ? "" : formatDateTime(card.until.toDateTime(), "yyyy-mm-dd")) + ",";
  line += creditOf(card) + "," + yesOrNo(card.supervisor) + yesOrNo(card.valid);
  line.pop_back();
  return line + "\r\n";
}

}  // namespace

CardTable exportCards(Installation& installation, bool withPins) {
  const GroupNames groups(installation);
  CardTable table;
  table.text =
      std::string("number,name,code,group,") + (withPins ? "pin," : "") + "until,credit,supervisor,valid\r\n";
  const std::string& defaultGroup = groups.name(0);
  for (const CardRow& card : listCards(installation)) {
    table.text += lineOf(card, card.group.isNull() ? defaultGroup : card.group.toText(), withPins);
    ++table.cards;
  }
  return table;
}

}  // namespace voxa
