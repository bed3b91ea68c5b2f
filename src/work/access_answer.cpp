#include "work/access_answer.h"

namespace voxa {

namespace {

std::string programs(const AccessAnswer& answer) {
  return answer.weeklyProgram + ", " + answer.dailyProgram + " (" + answer.hours + ")";
}

std::string plainReason(const AccessAnswer& answer) {
  switch (answer.reason) {
    case AccessReason::always:
      return "always";
    case AccessReason::inHours:
      return "within the hours of " + programs(answer) +
             (answer.holiday.empty() ? "" : ", on the holiday " + answer.holiday);
    case AccessReason::deleted:
      return "the card is deleted";
    case AccessReason::sharedNumber:
      return "another card has the same number: neither is sent until each has its own";
    case AccessReason::noCode:
      return "the card has no code";
    case AccessReason::notValid:
      return "the card is not valid";
    case AccessReason::expired:
      return "its last valid day is past";
    case AccessReason::notGranted:
      return "its access group does not grant the door";
    case AccessReason::twoPrograms:
      return "its access group grants the controller's doors under two weekly programs: this one stays shut";
    case AccessReason::outsideHours:
      return "outside the hours of " + programs(answer);
    case AccessReason::holiday:
      return "on the holiday " + answer.holiday + ", outside the hours of " + programs(answer);
    case AccessReason::cannotBeSent:
    case AccessReason::notConnected:
    case AccessReason::badLink:
    case AccessReason::missingProgram:
      break;
  }
  return answer.fault;
}

}  // namespace

std::string reasonText(const AccessAnswer& answer) {
  std::string text = plainReason(answer);
  if (!answer.opens) return text;
  if (answer.otherSide) text += ", as the other side of a granted door";
  if (answer.credit > 0) {
    text += "; whether its credit of " + std::to_string(answer.credit) +
            " is used up, the controller alone knows";
  }
  return text;
}

std::string knownText(const AccessAnswer& answer) {
  if (answer.known == Sure::yes) return "yes";
  std::string text = answer.known == Sure::unsaid ? "in doubt" : "not yet";
  const char* separator = " (";
  for (const std::string& what : answer.missing) {
    text += separator + what;
    separator = ", ";
  }
  text += ")";
  if (!answer.oldCode.empty()) {
    text += answer.oldCodeOpens == Sure::yes ? "; it still opens" : "; it may still open";
    return text + " to its old card (code " + answer.oldCode + ")";
  }
  if (answer.controllerOpens == Sure::unsaid || answer.controllerOpens == sure(answer.opens)) return text;
  return text + (answer.opens ? "; it keeps the door shut" : "; it opens the door");
}

std::string sentenceOf(const AccessAnswer& answer) {
  return answer.name + " (card " + std::to_string(answer.card) +
         (answer.opens ? ") opens " : ") does not open ") + answer.door + ": " + reasonText(answer);
}

std::string whereKnown(const AccessAnswer& answer) {
  return answer.controllerName + (answer.lineInUse ? ": " : ", whose line is not in use: ") +
         knownText(answer);
}

}  // namespace voxa
