#include "lines/card.h"

#include "lines/code.h"
#include "lines/controller_date.h"
#include "lines/field.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr const char* clearingCode = "00000000";
constexpr const char* noDate = "000000";

// Makes the lines of one card for one kind of controller.
class Lines {
 public:
  Lines(std::int32_t cardNum, bool separated)
      : number_(numberField(cardNum, 1, 4, "card number")), separated_(separated) {}

  void add(const std::string& command, const std::string& value) {
    lines_.push_back(separated_ ? command + ";01;" + number_ + ";" + value : command + number_ + value);
  }
  void supervisor(bool on) {
    if (separated_) return add("49", on ? "1" : "0");
    add("49", on ? "" : "0");
  }
  void lift(std::int16_t output) {
    lines_.push_back("37" + number_ + numberField(output, 1, 2, "lift output"));
  }
  std::vector<std::string> take() { return std::move(lines_); }

 private:
  std::string number_;
  bool separated_;
  std::vector<std::string> lines_;
};

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

std::vector<std::string> cardLines(const CardRecord& card, const CardRights& rights,
                                   const std::vector<std::int16_t>& liftOutputs,
                                   std::string_view controllerType, DateTime today) {
  Lines lines(card.number, controllerType == "VRMD1");
  // A controller must not keep the old code of a card that is gone or has no code any more.
  if (card.deleted || (card.parts[cardCodePart] && card.code.empty())) {
    lines.add("09", clearingCode);
    return lines.take();
  }
  const auto digit = [&](bool door) { return card.validated && door ? "1" : "0"; };
  if (card.parts[cardCodePart]) lines.add("09", convertCardCode(card.code));
  if (card.parts[accessGroupPart]) lines.add("33", numberField(rights.weeklyProgram, 0, 2, "weekly program"));
  if (card.parts[validatedPart]) {
    lines.add("16", digit(rights.firstDoor));
    lines.add("17", digit(rights.secondDoor));
  }
  if (card.parts[pinCodePart]) lines.add("19", numberField(card.pinCode, 0, 4, "personal code"));
  if (card.parts[supervisorPart]) lines.supervisor(card.supervisor);
  if (card.parts[validationDatePart]) {
    lines.add("35", card.validationDate ? controllerDate(*card.validationDate, today) : noDate);
  }
  if (card.parts[creditPart]) lines.add("36", numberField(card.credit, 0, 2, "credit"));
  for (const std::int16_t output : liftOutputs) lines.lift(output);
  return lines.take();
}

}  // namespace voxa
