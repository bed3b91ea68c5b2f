#include "work/card_erasing.h"

#include "access/card_doors.h"
#include "access/card_record.h"
#include "comm/com.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "work/card_values.h"
#include "work/installation.h"
#include "work/line_test.h"
#include "work/refusal.h"

namespace voxa {

namespace {

struct Sent {
  std::int16_t status = 0;
  bool raised = false;  ///< an error, which is the current one
};

Sent sendClearing(Installation& installation, std::int16_t number, const Component& component) {
  Sent sent;
  sent.raised = true;
  sent.status = installation.attempt([&] {
    const std::int16_t status =
        installation.Com().sendLines({clearCardLine(number)}, component.type, component.name);
    sent.raised = false;
    return status;
  });
  return sent;
}

/// The controllers of a group that cannot be asked now: their line is not in use, or they do not answer.
std::vector<std::string> outOfReach(Installation& installation, std::int16_t group) {
  std::vector<std::string> names;
  Com& com = installation.Com();
  if (com.inhibitCom) return names;
  for (const GrantedController& controller : controllersOf(installation.database(), group)) {
    if (controller.active && com.TestSend(controller.station, controller.address)) continue;
    names.push_back(com.getName(controller.station, controller.address));
  }
  return names;
}

}  // namespace

std::int16_t numberOfCard(Installation& installation, const std::string& numberOrName) {
  return cardNamed(installation, numberOrName)->get("CardNum").toInt16();
}

ErasedCard deleteCard(Installation& installation, std::int16_t number) {
  const auto card = cardNumbered(installation, number);
  ErasedCard erased;
  erased.name = card->get("Name").toText();
  erased.holders = outOfReach(installation, nullToInt(card->get("AccessGroupId")));
  markWhole(installation, {number});
  if (sendClearing(installation, number, {}).status != 0) {
    tell(installation, into(erased.notices),
         {"msgCantSendCommand", "Com.SendCommand", Value(installation.Com().popErrorList())});
    return erased;
  }
  card->edit();
  card->set("Deleted", true);
  for (std::size_t part = 0; part < cardPartCount; ++part) {
    card->set(flagColumn(part), part == cardCodePart && !erased.holders.empty());
  }
  card->update();
  erased.erased = true;
  return erased;
}

ErasedCard invalidateCard(Installation& installation, std::int16_t number, const Component& component) {
  const auto silent = silentControllers(installation, component);
  markWhole(installation, {number});
  ErasedCard erased;
  const Sent sent = sendClearing(installation, number, component);
  if (sent.raised) {
    tell(installation, into(erased.notices), {"msgCantWriteCommand", "Cardholders.invalidate"});
    return erased;
  }
  if (sent.status != 0) throw Refusal("msgCantSendCommand", installation.Com().popErrorList());
  erased.erased = true;
  erased.holders = namesOf(silent);
  return erased;
}

}  // namespace voxa
