#include "controllers/plan.h"

#include <algorithm>

namespace voxa {

const char* textOf(PlanReason reason) {
  switch (reason) {
    case PlanReason::newController:
      return "new controller";
    case PlanReason::notSent:
      return "not sent yet";
    case PlanReason::changed:
      return "changed";
    case PlanReason::oldCard:
      return "changed; its old card opens until then";
    case PlanReason::answerLost:
      return "answer lost";
    case PlanReason::unknown:
      return "nothing is known of it";
    case PlanReason::creditMarked:
      return "the credit is to be sent";
    case PlanReason::liftTaken:
      return "lost a lift output";
    case PlanReason::blocked:
      return "the card is blocked";
    case PlanReason::timesChange:
      return "its times change";
    case PlanReason::deleted:
      return "deleted";
    case PlanReason::noCode:
      return "has no code";
    case PlanReason::leftGroup:
      return "left the group";
    case PlanReason::requested:
      break;
  }
  return "asked for";
}

std::size_t missingOf(const std::vector<PlanItem>& items) {
  return static_cast<std::size_t>(std::count_if(items.begin(), items.end(), [](const PlanItem& item) {
    return item.action != PlanItem::Action::shutMeanwhile;
  }));
}

const char* textOf(PlanItem::Action action) {
  switch (action) {
    case PlanItem::Action::erase:
      return "erase";
    case PlanItem::Action::send:
      return "send";
    case PlanItem::Action::sendAgain:
      return "send again";
    case PlanItem::Action::shutMeanwhile:
      break;
  }
  return "shut meanwhile";
}

const char* kindName(ThingKind kind) {
  switch (kind) {
    case ThingKind::daily:
      return "daily program";
    case ThingKind::weeklyC:
      return "weekly program C";
    case ThingKind::weeklyE:
      return "weekly program E";
    case ThingKind::holiday:
      return "holiday";
    case ThingKind::badgeFormat:
      return "badge format";
    case ThingKind::card:
      break;
  }
  return "card";
}

std::string nameOf(ThingKind kind, std::int32_t number) {
  const std::string name = kindName(kind);
  if (kind != ThingKind::badgeFormat) return name + " " + std::to_string(number);
  return number == 0 ? name : name + " of reader " + std::to_string(number);
}

}  // namespace voxa
