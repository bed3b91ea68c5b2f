#include "app/file_engine.h"

#include <string_view>
#include <vector>

#include "app/engine_by_file.h"
#include "engines/sqlite/engine.h"
#ifdef _WIN32
#include "engines/dao/engine.h"
#else
#include "engines/jet_file/engine.h"
#endif

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

#ifdef _WIN32
/// The installed library, which masks no columns.
EngineByFile::Further jetFiles(const Clock& clock, const FileRights& rights,
                               const std::vector<SqliteOptions::Secret>& /*secrets*/) {
  return {[codes = rights.codes](std::string_view head) {
            if (!isJetFile(head) || !isDaoInstalled()) return false;
            if (codes) return true;
            throw Error(err::dbNoPermission,
                        "Personal codes cannot be masked in a file that the installed library serves");
          },
          makeDaoEngine(clock)};
}
#else
EngineByFile::Further jetFiles(const Clock& clock, const FileRights& /*rights*/,
                               const std::vector<SqliteOptions::Secret>& secrets) {
  return {isJetFile, makeJetFileEngine(clock, {.secrets = secrets})};
}
#endif

}  // namespace

std::unique_ptr<DatabaseEngine> makeFileEngine(const Clock& clock, FileRights rights) {
  const auto secrets = rights.codes ? std::vector<SqliteOptions::Secret>() : columnsWithCodes();
  const std::shared_ptr<DatabaseEngine> embedded = makeSqliteEngine(
      clock, {.readOnly = !rights.write, .secrets = secrets, .journal = SqliteOptions::Journal::kept});
  return std::make_unique<EngineByFile>(
      embedded, std::vector<EngineByFile::Further>{jetFiles(clock, rights, secrets)}, embedded);
}

void addReaderNotes(const Database& source, Transferred& done, RefusedRows* refused) {
#ifdef _WIN32
  (void)source, (void)done, (void)refused;  // what the installed library leaves out it does not tell
#else
  const std::vector<std::string>& notes = jetFileNotes(source);
  done.notes.insert(done.notes.end(), notes.begin(), notes.end());
  if (!isDamagedJetFile(source)) return;
  done.damaged = true;
  if (refused != nullptr) refused->addDamage(notes);
#endif
}

}  // namespace voxa
