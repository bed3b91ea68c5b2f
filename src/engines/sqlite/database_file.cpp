#include "engines/sqlite/database_file.h"

#include <sqlite3.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <memory>

#include "engines/language/dialect.h"
#include "engines/sqlite/catalog.h"
#include "engines/sqlite/connection.h"
#include "engines/sqlite/session.h"
#include "platform/error.h"
#include "platform/files.h"

namespace voxa {

namespace {

/// Marks the files of this engine in SQLite's file header ("VoxB"), and those that are sorted as before
/// ("VoxA").
constexpr std::uint32_t applicationId = 0x566f7842;
constexpr std::uint32_t applicationIdBefore = 0x566f7841;
constexpr std::size_t applicationIdOffset = 68;
constexpr std::string_view magic("SQLite format 3\0", 16);
using Header = std::array<unsigned char, 100>;

/// Reads the header through SQLite's own file layer and returns its result code. On POSIX systems any other
/// way would drop the locks that another connection of this process holds on the file.
int readHeader(const std::string& path, Header& header) {
  sqlite3_vfs* vfs = sqlite3_vfs_find(nullptr);
  const auto memory = std::make_unique<std::uint64_t[]>(static_cast<std::size_t>(vfs->szOsFile) / 8 + 1);
  auto* file = reinterpret_cast<sqlite3_file*>(memory.get());
  const std::unique_ptr<const char, void (*)(const char*)> name(
      sqlite3_create_filename(path.c_str(), "", "", 0, nullptr),
      [](const char* n) { sqlite3_free_filename(const_cast<char*>(n)); });
  int code = vfs->xOpen(vfs, name.get(), file, SQLITE_OPEN_READONLY | SQLITE_OPEN_MAIN_DB, nullptr);
  if (code == SQLITE_OK)
    code = file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0);
  if (file->pMethods != nullptr) (void)file->pMethods->xClose(file);
  return code;
}

/// 0 for a file that is not SQLite's.
std::uint32_t applicationIdOf(const Header& header) {
  const std::string_view start(reinterpret_cast<const char*>(header.data()), magic.size());
  if (start != magic) return 0;
  std::uint32_t id = 0;
  for (std::size_t i = 0; i < 4; ++i) id = id << 8 | header[applicationIdOffset + i];
  return id;
}

Error createFailure(const Error& error) {
  switch (error.number()) {
    case err::fileExists:
      return {err::dbFileExists, "The database exists already: " + error.description()};
    case err::diskFull:
      return {err::dbDiskFull, error.description()};
    default:
      return {err::dbCannotOpen, "The database cannot be created: " + error.description()};
  }
}

/// Makes a file as `fill` fills it, or none.
template <typename Fill>
void makeFile(std::string_view given, const Session& session, Fill&& fill) {
  // The file is made under another name, so that a process that is killed meanwhile leaves no half database.
  const std::string begun = std::string(given) + "~new";
  try {
    if (files::exists(given)) throw fileError(EEXIST, std::string(given));
    (void)files::removeRegular(begun);
    files::createNew(begun);
  } catch (const Error& error) {
    throw createFailure(error);
  }
  try {
    {
      Connection connection(databasePath(begun), session.options, session.clock);
      connection.run("PRAGMA journal_mode=OFF");  // a failure undoes the file
      fill(connection);
    }
    // Somebody may have deleted a database of this name and left its journal, which must not be rolled back
    // into this one.
    (void)files::removeRegular(std::string(given) + "-journal");
    files::rename(begun, given);
  } catch (const Error& error) {
    (void)files::removeRegular(begun);
    if (error.number() == err::fileExists) throw createFailure(error);  // another process was first
    throw;
  }
}

}  // namespace

std::string databasePath(std::string_view path) {
  std::string native = files::native(path);
  const std::u8string utf8(native.begin(), native.end());
  if (!std::filesystem::path(utf8).is_absolute())
    native = files::native(files::currentFolder() + "\\" + native);
  return native;
}

void createDatabaseFile(std::string_view given, const Session& session) {
  makeFile(given, session, [](Connection& begun) {
    // There is no earlier state to keep. The first commit waits for the disk, and these pages are part of it.
    begun.run("PRAGMA synchronous=OFF; BEGIN; PRAGMA application_id=" + std::to_string(applicationId) +
              "; CREATE TABLE " + Catalog::queryTable + " (Name TEXT COLLATE " + dialect::collation +
              " PRIMARY KEY, Sql TEXT NOT NULL); COMMIT");
  });
}

void copyDatabaseFile(const std::string& path, std::string_view given, const Session& session) {
  const Connection source(path, session.options, session.clock);
  makeFile(given, session, [&](Connection& begun) { begun.copyFrom(source); });
}

bool checkDatabaseFile(const std::string& path, std::string_view given) {
  const std::string name(given);
  if (!files::exists(given)) throw Error(err::dbFileNotFound, "Could not find the database: " + name);
  Header header{};
  // A link leads to somebody else's file, and opening a pipe would wait for its writer.
  const int code = files::isPlain(given) ? readHeader(path, header) : SQLITE_CANTOPEN;
  const std::uint32_t id = applicationIdOf(header);
  const bool ours = id == applicationId || id == applicationIdBefore;
  if (code == SQLITE_IOERR_SHORT_READ || (code == SQLITE_OK && !ours)) {
    throw Error(err::dbNotADatabase, "The file is no database of this system: " + name);
  }
  if (code != SQLITE_OK) throw Error(err::dbCannotOpen, "The database cannot be opened: " + name);
  return id == applicationId;
}

Connection openDatabaseFile(const std::string& path, const Session& session, bool sorted) {
  Connection connection(path, session.options, session.clock);
  if (sorted) return connection;
  if (connection.readOnly()) return readDatabaseFile(path, session, sorted);
  Step step(connection);
  // Another process may have been first.
  if (connection.number("PRAGMA application_id") != applicationId) {
    connection.run(std::string("REINDEX ") + dialect::collation +
                   "; PRAGMA application_id=" + std::to_string(applicationId));
  }
  step.release();
  return connection;
}

Connection readDatabaseFile(const std::string& path, const Session& session, bool sorted) {
  SqliteOptions options = session.options;
  options.readOnly = true;
  return {path, options, session.clock, sorted ? Connection::Order::today : Connection::Order::before};
}

}  // namespace voxa
