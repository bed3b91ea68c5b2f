#include "app/open_database.h"

#include <algorithm>
#include <filesystem>

#include "platform/files.h"

namespace voxa {

namespace fs = std::filesystem;

namespace {

fs::path pathOf(const std::string& path) {
  const std::string native = files::native(path);
  return std::u8string(native.begin(), native.end());
}

}  // namespace

std::shared_ptr<Database> findOpenDatabase(const DatabaseEngine& engine, const std::string& path) {
  std::error_code none;  // what cannot be looked at is no file that is open
  for (const std::shared_ptr<Database>& database : engine.databases()) {
    if (fs::equivalent(pathOf(database->name()), pathOf(path), none)) return database;
  }
  return nullptr;
}

std::shared_ptr<Database> openDatabase(DatabaseEngine& engine, const std::string& path, bool forReading) {
  std::shared_ptr<Database> read = engine.open(path, FileUse::reading);
  if (forReading) return read;
  if (isLedger(*read)) {
    throw Error(err::dbNotUpdatable,
                path +
                    " is a ledger, which nothing but the sends themselves may write: it can be opened for "
                    "reading only");
  }
  read->close();
  return engine.open(path);
}

std::shared_ptr<Database> createDatabase(DatabaseEngine& engine, const std::string& path) {
  return engine.create(pathOf(path).has_extension() ? path : path + ".mdb");
}

bool isLedger(const Database& database) {
  const std::vector<std::string> tables = database.tableNames();
  return std::count(tables.begin(), tables.end(), "Things") > 0 &&
         std::count(tables.begin(), tables.end(), "Sends") > 0;
}

}  // namespace voxa
