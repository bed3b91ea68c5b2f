#include "comm/inter.h"

#include "platform/context.h"
#include "platform/driver/driver.h"

namespace voxa {

std::int16_t Inter::readDate(std::int16_t StationID, std::int16_t ControllerAddr) const {
  return context_.driver().call(CmReadDate, StationID, ControllerAddr);
}

std::int16_t Inter::connect(std::int16_t StationID) const {
  return context_.driver().call(CmConnect, StationID, 0);
}

std::int16_t Inter::disconnect(std::int16_t StationID) const {
  return context_.driver().call(CmDisconnect, StationID, 0);
}

std::int16_t Inter::sendDate(std::int16_t StationID, std::int16_t ControllerAddr) const {
  return context_.driver().call(CmSendDate, StationID, ControllerAddr);
}

std::int16_t Inter::readStatus(std::int16_t StationID, std::int16_t ControllerAddr) const {
  return context_.driver().call(CmReadStatus, StationID, ControllerAddr);
}

std::int16_t Inter::sendClear(std::int16_t StationID, std::int16_t ControllerAddr) const {
  return context_.driver().call(CmSendClear, StationID, ControllerAddr);
}

std::int16_t Inter::sendCommand(std::int16_t StationID, std::int16_t ControllerAddr) const {
  return context_.driver().call(CmSendCommand, StationID, ControllerAddr);
}

std::int16_t Inter::resetReadingPointer(std::int16_t StationID, std::int16_t ControllerAddr) const {
  return context_.driver().call(CmResetReadPointer, StationID, ControllerAddr);
}

std::int16_t Inter::readMemory(std::int16_t StationID, std::int16_t ControllerAddr) const {
  return context_.driver().call(cmReadMemory, StationID, ControllerAddr);
}

}  // namespace voxa
