#include "platform/database/database.h"

namespace voxa {

const std::shared_ptr<Database>& requireOpen(const std::shared_ptr<Database>& handle) {
  if (!handle || !handle->isOpen()) throw Error(err::objectNotSet, "No database is open");
  return handle;
}

void requireTransaction(const DatabaseEngine& engine) {
  if (!engine.inTransaction()) throw Error(err::dbNoTransaction, "There is no transaction to end");
}

void requireNoTransaction(const DatabaseEngine& engine) {
  if (engine.inTransaction())
    throw Error(err::dbInvalidArgument, "A transaction is running already; transactions do not nest");
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
