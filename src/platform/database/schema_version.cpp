#include "platform/database/schema_version.h"

#include <algorithm>

#include "platform/database/database.h"
#include "platform/files.h"

namespace voxa {

namespace {

std::string fileName(const Database& database) {
  return database.name().substr(database.name().find_last_of("/\\") + 1);
}

/// The version of a file; raises 3041 when it is none that these steps lead to.
std::size_t knownVersion(const Database& database, const SchemaSteps& steps) {
  const std::size_t version = database.schemaVersion();
  if (version <= steps.size()) return version;
  throw Error(err::dbVersion, fileName(database) + " is of a newer version of this system (" +
                                  std::to_string(version) + ", this one knows " +
                                  std::to_string(steps.size()) +
                                  "): use that version, or a copy of the file that this one has saved");
}

bool onlyStamps(const SchemaSteps& steps, std::size_t from) {
  return std::none_of(steps.begin() + static_cast<std::ptrdiff_t>(from), steps.end(),
                      [](const SchemaStep& step) { return static_cast<bool>(step); });
}

/// Whether a failure says that the file, sound as it may be, cannot be changed now.
bool cannotBeChanged(int number) {
  return number == err::dbNotUpdatable || number == err::dbCannotOpen || number == err::dbLocked ||
         number == err::dbDiskFull;
}

void run(const SchemaSteps& steps, Database& database, std::size_t from) {
  for (std::size_t i = from; i < steps.size(); ++i) {
    if (steps[i]) steps[i](database);
  }
  database.setSchemaVersion(steps.size());
}

/// Where a copy of the old file goes: a name that no other copy has.
std::string placeForCopy(const Database& database, std::size_t version) {
  const std::string first = database.name() + ".v" + std::to_string(version);
  std::string place = first;
  for (int n = 2; files::exists(place); ++n) place = first + "-" + std::to_string(n);
  return place;
}

void copyAndRun(const SchemaSteps& steps, Database& database, std::size_t from) {
  const std::string copy = placeForCopy(database, from);
  database.copyTo(copy);
  try {
    run(steps, database, from);
  } catch (...) {
    (void)files::removeRegular(copy);  // the file stays what it is: each further opening would leave one more
    throw;
  }
}

/// A copy that is deleted at the end.
class TrialFile {
 public:
  TrialFile(const Database& original, const std::string& path) : path_(path) {
    (void)files::removeRegular(path_);  // of a process that was killed
    original.copyTo(path_);
  }
  ~TrialFile() { (void)files::removeRegular(path_); }
  TrialFile(const TrialFile&) = delete;
  TrialFile& operator=(const TrialFile&) = delete;

 private:
  std::string path_;
};

}  // namespace

void bringForward(DatabaseEngine& engine, Database& database, const SchemaSteps& steps) {
  const std::size_t found = knownVersion(database, steps);
  if (found == steps.size()) return;
  const bool stamps = onlyStamps(steps, found);
  if (engine.inTransaction()) {
    if (stamps) return;
    throw Error(err::dbInvalidArgument,
                fileName(database) + " is of an older version and cannot be opened within a transaction");
  }
  try {
    Transaction transaction(engine, database);
    const std::size_t version = knownVersion(database, steps);  // another process may have been first
    if (version == steps.size()) return;
    if (onlyStamps(steps, version)) {
      run(steps, database, version);
    } else {
      copyAndRun(steps, database, version);
    }
    transaction.commit();
  } catch (const Error& failure) {
    if (!stamps || !cannotBeChanged(failure.number())) throw;
  }
}

void checkBroughtForward(DatabaseEngine& engine, Database& database, const SchemaSteps& steps,
                         const std::string& trial, const std::function<void(Database&)>& check) {
  const std::size_t version = knownVersion(database, steps);
  if (onlyStamps(steps, version)) {
    check(database);
    return;
  }
  const TrialFile file(database, trial);
  const auto copy = engine.open(trial);
  Transaction transaction(engine, *copy);  // never committed: the copy goes anyway
  run(steps, *copy, version);
  check(*copy);
}

}  // namespace voxa
