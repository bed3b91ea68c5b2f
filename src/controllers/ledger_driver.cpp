#include "controllers/ledger_driver.h"

namespace voxa {

std::int16_t LedgerDriver::call(ComCommandsEnum command, std::int16_t stationId,
                                std::int16_t controllerAddr) {
  if (command != CmSendCommand) return driver_.call(command, stationId, controllerAddr);
  Ledger::Call call = ledger_.begin({stationId, controllerAddr});
  std::int16_t result = 0;
  try {
    result = driver_.call(command, stationId, controllerAddr);
  } catch (const Error& error) {
    const bool noDriver = error.number() == err::fileNotFound || error.number() == err::entryPointNotFound;
    noDriver ? ledger_.withdraw(call) : ledger_.end(call, std::nullopt);
    throw;
  }
  ledger_.end(call, result);
  return result;
}

}  // namespace voxa
