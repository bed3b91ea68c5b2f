#include "comm/dialling.h"

#include "comm/com.h"
#include "comm/comm_context.h"
#include "comm/send_ledger.h"
#include "comm/station.h"
#include "platform/clock.h"

namespace voxa {

std::int16_t callStation(CommContext& context, std::int16_t station, bool stays) {
  const bool noted = !stays && !context.Com().inhibitCom;
  if (noted) context.ledger().noteCall(station);
  const std::int16_t result = context.Com().Send(CmConnect, station);
  if (result == 0) context.Stations().setActive(station, true);
  return result;
}

std::int16_t hangUpStation(CommContext& context, std::int16_t station) {
  const std::int16_t result = context.Com().Send(CmDisconnect, station);
  context.Stations().setActive(station, false);
  if (!context.Com().inhibitCom) context.ledger().forgetCall(station);
  return result;
}

void hangUpAbandoned(CommContext& context) {
  if (context.Com().inhibitCom) return;
  for (const std::int16_t station : context.ledger().abandonedCalls()) (void)hangUpStation(context, station);
}

StationCall::StationCall(CommContext& context, std::int16_t station) : context_(context), station_(station) {
  Com& com = context.Com();
  context.clock().wait(secondsBeforeCall);
  std::int16_t result = callStation(context, station, false);
  if (result != 0) {
    (void)com.popErrorList();  // the second attempt decides
    result = callStation(context, station, false);
  }
  if (result != 0) {
    failure_ = context.messages().read("msgUICantConnect") + com.popErrorList();
    if (failure_.empty()) failure_ = "no connection";
  }
  context.clock().wait(secondsBehindCall);
}

StationCall::~StationCall() {
  try {
    (void)hangUpStation(context_, station_);
  } catch (const Error& error) {
    // The note stays: whoever sends next hangs up.
    context_.Com().errorList += "\r\n" + error.description();
  }
}

}  // namespace voxa
