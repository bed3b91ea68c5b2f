#include "lines/card.h"

#include <array>

#include "lines/code.h"
#include "lines/controller_date.h"
#include "lines/field.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr const char* clearingCode = "00000000";
constexpr const char* noDate = "000000";

constexpr std::array<std::string_view, cardFieldCount + 1> commands = {"09", "33", "16", "17", "19",
                                                                       "49", "35", "36", "37"};

}  // namespace

std::string clearCardLine(std::int32_t cardNum) {
  return "09" + zeroPadded(cardNum, 4) + clearingCode;
}

std::vector<std::string> clearCardLines(const std::vector<std::int32_t>& cardNums) {
  std::vector<std::string> lines;
  lines.reserve(cardNums.size());
  for (const std::int32_t number : cardNums) lines.push_back(clearCardLine(number));
  return lines;
}

CardPart partOf(CardField field) {
  static constexpr std::array<CardPart, cardFieldCount + 1> parts = {
      cardCodePart,   accessGroupPart,    validatedPart, validatedPart,  pinCodePart,
      supervisorPart, validationDatePart, creditPart,    accessGroupPart};
  return parts.at(static_cast<std::size_t>(field));
}

bool isForControllers(const CardRecord& card) {
  return !card.deleted && !card.code.empty();
}

std::string cardValue(CardField field, const CardRecord& card, const CardRights& rights, DateTime today) {
  switch (field) {
    case CardField::code:
      return convertCardCode(card.code);
    case CardField::weekly:
      return numberField(rights.weeklyProgram, 0, 2, "weekly program");
    case CardField::door1:
      return card.validated && rights.firstDoor ? "1" : "0";
    case CardField::door2:
      return card.validated && rights.secondDoor ? "1" : "0";
    case CardField::pin:
      return numberField(card.pinCode, 0, 4, "personal code", FieldKind::secret);
    case CardField::supervisor:
      return card.supervisor ? "1" : "0";
    case CardField::lastDay:
      return card.validationDate ? controllerDate(*card.validationDate, today) : noDate;
    case CardField::credit:
      return numberField(card.credit, 0, 2, "credit");
    case CardField::lift:
      break;
  }
  return "";
}

std::string liftValue(std::int16_t output) {
  return numberField(output, 1, 2, "lift output");
}

std::string cardLine(CardField field, std::int32_t cardNum, std::string_view value,
                     std::string_view controllerType) {
  std::string line(commands.at(static_cast<std::size_t>(field)));
  const bool separated = controllerType == "VRMD1" && field != CardField::lift;
  // The plain form says of a supervisor nothing, and of any other card 0.
  if (field == CardField::supervisor && !separated && value == "1") value = "";
  if (separated) line += ";01;";
  line += numberField(cardNum, 1, 4, "card number");
  if (separated) line += ';';
  return line += value;
}

std::vector<std::string> cardLines(const CardRecord& card, const CardRights& rights,
                                   const std::vector<std::int16_t>& liftOutputs,
                                   std::string_view controllerType, DateTime today) {
  // A controller must not keep the old code of a card that is gone or has no code any more.
  if (card.deleted || (card.parts[cardCodePart] && card.code.empty()))
    return {cardLine(CardField::code, card.number, clearingCode, controllerType)};
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < cardFieldCount; ++i) {
    const auto field = static_cast<CardField>(i);
    if (!card.parts[partOf(field)]) continue;
    lines.push_back(cardLine(field, card.number, cardValue(field, card, rights, today), controllerType));
  }
  for (const std::int16_t output : liftOutputs)
    lines.push_back(cardLine(CardField::lift, card.number, liftValue(output), controllerType));
  return lines;
}

}  // namespace voxa
