#include "platform/database/database.h"

#include <atomic>

namespace voxa {

const std::shared_ptr<Database>& requireOpen(const std::shared_ptr<Database>& handle) {
  if (!handle || !handle->isOpen()) throw Error(err::objectNotSet, "No database is open");
  return handle;
}

std::uint64_t nextFailure() {
  static std::atomic<std::uint64_t> last = 0;  // threads of their own may have engines of their own
  return ++last;
}

Transaction::Transaction(DatabaseEngine& engine, Database& changed) : Transaction(engine) {
  changed.lockForChanges();
}

Transaction::~Transaction() {
  if (!owner_ || !engine_.inTransaction()) return;
  try {
    engine_.rollback();
  } catch (const Error&) {
    // The engine's error collection has this failure. The one that led here is the one to report.
  }
}

}  // namespace voxa
