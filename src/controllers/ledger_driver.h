#pragma once

#include "controllers/ledger.h"
#include "platform/driver/driver.h"

namespace voxa {

/// A driver over which the ledger keeps account: each call that sends a command file is in doubt before it is
/// made, and noted with its raw result behind it. Whoever calls is seen. Raises what keeps the ledger from
/// being written, and has not called then.
class LedgerDriver : public Driver {
 public:
  LedgerDriver(Driver& driver, Ledger& ledger) : driver_(driver), ledger_(ledger) {}

  std::int16_t call(ComCommandsEnum command, std::int16_t stationId, std::int16_t controllerAddr) override;
  [[nodiscard]] int lastError() const override { return driver_.lastError(); }

 private:
  Driver& driver_;
  Ledger& ledger_;
};

}  // namespace voxa
