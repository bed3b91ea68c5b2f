#include "platform/database/database.h"

namespace voxa {

Transaction::~Transaction() {
  if (!owner_ || !engine_.inTransaction()) return;
  try {
    engine_.rollback();
  } catch (const Error&) {
    // The engine's error collection has it; the failure that led here is the one to report.
  }
}

}  // namespace voxa
