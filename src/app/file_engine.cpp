#include "app/file_engine.h"

#include <vector>

#include "engines/sqlite/engine.h"

namespace voxa {

namespace {

/// The columns that personal codes can be read from. In a ledger they are in the lines and states of cards;
/// from a digest one can be found by trying all.
std::vector<SqliteOptions::Secret> columnsWithCodes() {
  return {{"", "PINCode"},
          {"Things", "State"},
          {"Sends", "Lines"},
          {"NotUnderstood", "Line"},
          {"Digests", "Digest"}};
}

}  // namespace

std::unique_ptr<DatabaseEngine> makeFileEngine(const Clock& clock, FileRights rights) {
  return makeSqliteEngine(
      clock, {.readOnly = !rights.write,
              .secrets = rights.codes ? std::vector<SqliteOptions::Secret>() : columnsWithCodes(),
              .journal = SqliteOptions::Journal::kept});
}

}  // namespace voxa
