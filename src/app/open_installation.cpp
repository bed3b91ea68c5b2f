#include "app/open_installation.h"

#include <filesystem>
#include <system_error>

#include "access/card_block.h"
#include "app/engine_choice.h"
#include "app/host_texts.h"
#include "app/import_installation.h"
#include "app/installation_lock.h"
#include "app/main_database.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "comm/dialling.h"
#include "engines/sqlite/engine.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/files.h"
#include "work/installation_files.h"
#include "work/refusal.h"

namespace voxa {

namespace {

constexpr const char* messageStore = Strings::storeName;

}  // namespace

OpenInstallation::OpenInstallation(Prompts& prompts)
    : callersFolder_(files::currentFolder()),
      prompts_(prompts),
      engine_(makeEngine(clock_, makeSqliteEngine(clock_))) {}

OpenInstallation::~OpenInstallation() = default;

std::string OpenInstallation::callersFile(const std::string& path) const {
  return (std::filesystem::path(callersFolder_) / path).string();
}

std::string OpenInstallation::databaseFile(const std::string& named) const {
  if (named.empty()) return folder_ + "\\" + mainDatabase;
  const std::string path = callersFile(named);
  std::error_code noSuchFile;
  const std::filesystem::path found = std::filesystem::canonical(files::native(path), noSuchFile);
  return noSuchFile ? path : found.string();
}

bool OpenInstallation::hasDatabase(const Opening& how, const std::string& named) const {
  if (named.empty()) return true;
  const std::string path = databaseFile(named);
  const auto isOf = [&](const std::string& folder) {
    return files::exists((std::filesystem::path(folder) / mainDatabase).string()) &&
           isFileOfInstallation(folder, path);
  };
  if (isOf(callersFile(how.folder))) return true;
  const std::string other = std::filesystem::path(path).parent_path().string();
  if (isOf(other)) throw Refusal(path + " belongs to another installation: name that with --dir " + other);
  return false;
}

void OpenInstallation::enter(const Opening& how) {
  enterFolder(how);
  requireInstallation();
}

void OpenInstallation::enterFolder(const Opening& how) {
  std::error_code failure;
  std::filesystem::current_path(callersFile(how.folder), failure);
  if (failure) throw Refusal("the folder " + how.folder + " cannot be entered: " + failure.message());
  folder_ = files::currentFolder();
  if (const std::string fault = files::folderFault(folder_, how.trustGroup); !fault.empty()) {
    throw Refusal(fault);
  }
}

void OpenInstallation::start(const Opening& how) {
  library_ = std::make_unique<Library>(Library::Seams{*engine_, driver_, prompts_, clock_});
  glob_ = std::make_unique<Glob>(*library_);
  Com& com = library_->Com();
  com.inhibitCom = how.inhibit;
  com.writeLog = how.log;
  com.pDailyPrograms4Zones = how.fourZones ? 1 : 0;
}

Paths OpenInstallation::places() const {
  return {.AppDB = folder_ + "\\" + mainDatabase,
          .IniFile = folder_ + "\\S001.ini",
          .logFileName = folder_ + "\\COM.LOG",
          .Chemin = folder_};
}

void OpenInstallation::requireInstallation() const {
  if (files::exists(mainDatabase)) return;
  throw Refusal(folder_ + " is no installation (no " + mainDatabase + "): create one with 'voxa init'");
}

bool OpenInstallation::openForSending(const Opening& how) {
  enter(how);
  lock_ = std::make_unique<InstallationLock>();
  openHere(how);
  hangUpAbandoned(*library_);
  return eraseUnfinishedBlocks(*library_);
}

void OpenInstallation::open(const Opening& how) {
  enter(how);
  openHere(how);
}

void OpenInstallation::openHere(const Opening& how) {
  start(how);
  const Paths paths = places();
  glob_->Initialize(paths.AppDB, paths.IniFile, paths.logFileName, paths.Chemin);
  if (library_->DB()) return;
  throw Refusal("the installation in " + folder_ + " cannot be opened, as was told; if its " + mainDatabase +
                " is damaged, a copy made with 'voxa db save' can be put in its place");
}

void OpenInstallation::fillCatalogue() {
  Strings& strings = library_->Strings();
  if (!strings.isOpen() && strings.createDB() != 0) {
    throw Refusal("the message texts (" + std::string(messageStore) + ") cannot be created in " + folder_);
  }
  glob_->insertStrings();
  bool filled = false;
  library_->showLater([&] {
    Transaction transaction(*engine_, strings.database());
    filled = insertHostTexts(strings) == 0;
    if (filled) transaction.commit();
  });
  if (!filled) refuseIncomplete();
}

void OpenInstallation::refuseIncomplete() const {
  throw Refusal("the installation in " + folder_ + " is not complete");
}

void OpenInstallation::removeBegun(const std::string& name) const {
  if (!files::exists(name)) return;
  try {
    const auto database = engine_->open(name);
    const bool begun = database->tableNames().empty();
    database->close();
    if (begun) files::remove(name);
  } catch (const Error&) {
    // Then it is something else, and whoever needs its place says so.
  }
}

void OpenInstallation::create(const Opening& how) {
  try {
    files::makeFolders(callersFile(how.folder));
  } catch (const Error& failure) {
    throw Refusal("the folder " + how.folder + " cannot be made: " + failure.description());
  }
  enterFolder(how);
  lock_ = std::make_unique<InstallationLock>();
  removeUnfinishedImport();
  for (const char* name : {messageStore, Journal::dbName, mainDatabase}) removeBegun(name);
  if (files::exists(mainDatabase)) throw Refusal(folder_ + " holds an installation already");
  start(how);
  fillCatalogue();
  static_cast<Paths&>(library_->Com()) = places();
  Journal& journal = library_->QDB().Journal();
  if (!files::exists(Journal::dbName) && journal.createDB() != 0) refuseIncomplete();
  if (journal.DB()) journal.DB()->close();  // an open one would be put aside for a new one
  // The main database last, as what says that there is an installation: a killed creation can be repeated.
  QDB& qdb = library_->QDB();
  if (qdb.createDB() != 0 || journal.openDB() != 0) refuseIncomplete();
  // A table that could not be built has been told of, and stopped nothing.
  if (library_->attempt([&] { requireMainDatabase(qdb.database(), qdb.definitions()); }) != 0) {
    refuseIncomplete();
  }
}

void OpenInstallation::leave() {
  glob_.reset();
  library_.reset();
  for (const auto& database : engine_->databases()) database->close();
  lock_.reset();
  std::filesystem::current_path(callersFolder_);
}

}  // namespace voxa
