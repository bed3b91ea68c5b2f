#include "app/import_installation.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "access/badge_format.h"
#include "app/file_engine.h"
#include "app/installation_lock.h"
#include "app/main_database.h"
#include "app/qdb.h"
#include "comm/com_status_table.h"
#include "controllers/ledger_file.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/files.h"
#include "platform/scratch_folder.h"
#include "platform/text.h"
#include "work/refusal.h"
#include "work/take_over.h"

namespace voxa {

namespace {

namespace fs = std::filesystem;

// The installation is made in a folder within its own, and moved when it is whole, the main database last, as
// what says that there is an installation.
constexpr const char* stagingFolder = "import~unfinished";
constexpr const char* mainFile = OpenInstallation::mainDatabase;
constexpr const char* movedFirst[] = {Strings::storeName, Journal::dbName, LedgerFile::name};

/// The table of a database that has that name in any case.
std::optional<TableDef> findTable(const Database& database, const std::string& name) {
  for (const std::string& table : database.tableNames()) {
    if (equalNoCase(table, name)) return database.tableDef(table);
  }
  return std::nullopt;
}

std::shared_ptr<Database> openOld(DatabaseEngine& engine, const std::string& path, const char* table,
                                  const char* what) {
  auto database = engine.open(path, FileUse::reading);
  if (findTable(*database, table)) return database;
  throw Refusal(path + " is no " + what + " (it has no table " + table +
                "): 'voxa db convert' makes a plain database file of any other");
}

bool isOneOf(const std::vector<std::string>& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(), [&](const std::string& n) { return equalNoCase(n, name); });
}

class Import {
 public:
  Import(Library& library, DatabaseEngine& source, RefusedRows& refused, Observer& observer)
      : library_(library),
        source_(source),
        observer_(observer),
        all_(refused),
        refused_([&refused](const RefusedRow& row) { refused.add(row); }) {}

  Transferred run(const OldFiles& old) {
    Transaction transaction(library_.engine());
    importMain(*openOld(source_, old.main, "Stations", "main database of an installation"));
    if (!old.journal.empty()) {
      const auto journal = openOld(source_, old.journal, "Journal", "journal");
      take(*journal, *library_.Journal().DB(), "Journal");
      addReaderNotes(*journal, done_, &all_);
    }
    if (!old.texts.empty()) {
      const auto texts = openOld(source_, old.texts, "Strings", "store of message texts");
      BuiltInRows own(library_.Strings().database(), {"Strings"});
      take(*texts, library_.Strings().database(), "Strings");
      own.putBack("Strings");
      addReaderNotes(*texts, done_, &all_);
    }
    transaction.commit();
    requireMainDatabase(library_.QDB().database(), library_.QDB().definitions());
    return std::move(done_);
  }

 private:
  void importMain(Database& from) {
    Database& to = library_.QDB().database();
    if (findTable(from, badgeFormats)) library_.BadgeFormat().CreateTable();
    const std::vector<std::string> ours = to.tableNames();
    BuiltInRows builtIn(to, ours);
    for (const std::string& table : ours) {
      if (equalNoCase(table, comStatusDefinition().name)) continue;  // who answered then is not known now
      if (findTable(from, table)) take(from, to, table);
      // The line that a new installation begins with would be one that is not there.
      if (!equalNoCase(table, "Stations")) builtIn.putBack(table);
    }
    for (const std::string& table : from.tableNames()) {
      if (isOneOf(ours, table)) continue;
      copyTable(from, from.tableDef(table), to, refused_, done_, observer_);
      done_.notes.push_back("The table " + table + " is kept; this system does not use it.");
    }
    std::vector<Relation> kept;
    for (const Relation& relation : from.relations()) {
      if (!isOneOf(ours, relation.foreignTable)) {
        kept.push_back(relation);
      } else if (!isOneOf(ours, relation.table)) {
        done_.notes.push_back("The relation " + relation.name + " from " + relation.table + " to " +
                              relation.foreignTable + " is not taken over.");
      }
    }
    copyRelations(to, kept, refused_, done_);
    std::vector<std::string> own;
    for (const QueryDef& query : to.queries()) own.push_back(query.name);
    for (const QueryDef& query : from.queries()) {
      if (!isOneOf(own, query.name)) copyQuery(to, query, done_);
    }
    addReaderNotes(from, done_, &all_);
  }

  void take(Database& from, Database& to, const std::string& table) {
    done_.tables.push_back(
        takeOver(from, findTable(from, table).value(), to, table, refused_, observer_, done_.notes));
  }

  static constexpr const char* badgeFormats = "BadgeFormat";

  Library& library_;
  DatabaseEngine& source_;
  Observer& observer_;
  RefusedRows& all_;
  OnRefused refused_;
  Transferred done_;
};

void requireFree(const std::string& folder) {
  if (files::exists(mainFile)) throw Refusal(folder + " holds an installation already: name a new folder");
  for (const char* name : movedFirst) {
    if (files::exists(name)) throw Refusal(folder + " holds " + name + " already: name a new folder");
  }
}

}  // namespace

void removeUnfinishedImport() {
  if (!files::folderExists(stagingFolder)) return;
  // Files are moved in that order, once the main database is made.
  if (files::exists(std::string(stagingFolder) + "\\" + mainFile) && !files::exists(mainFile)) {
    for (const char* name : movedFirst) {
      if (files::exists(std::string(stagingFolder) + "\\" + name)) break;
      files::removeRegular(name);
    }
  }
  std::error_code failure;
  fs::remove_all(files::native(stagingFolder), failure);
  if (failure) {
    throw Refusal(std::string("the folder ") + stagingFolder +
                  ", which an import has left, cannot be removed: " + failure.message());
  }
}

namespace {

/// The current folder for the lifetime of the object.
class Within {
 public:
  explicit Within(const std::string& folder) : before_(files::currentFolder()) {
    fs::current_path(files::native(folder));
  }
  ~Within() {
    std::error_code nobodyToTell;
    fs::current_path(before_, nobodyToTell);
  }
  Within(const Within&) = delete;
  Within& operator=(const Within&) = delete;

 private:
  std::string before_;
};

void moveHere(const std::string& name) {
  files::rename(std::string(stagingFolder) + "\\" + name, name);
}

/// What the old system has sent is not known: the plan compares everything.
void doubtControllers(Library& library) {
  library.ledger().provide();
  const auto rows = library.QDB().database().openRecordset(
      "select distinct StationId, ControllerAddress from Readers where StationId is not null and "
      "ControllerAddress between 1 and 16");
  for (; !rows->eof(); rows->moveNext())
    library.ledger().replace({rows->get(0).toInt16(), rows->get(1).toInt16()}, true);
}

Transferred importHere(Prompts& prompts, const Opening& how, const OldFiles& old, RefusedRows& refused,
                       Observer& observer) {
  const Within here(files::currentFolder());  // an installation that fails stays in its folder
  OpenInstallation installation(prompts);
  Opening staging = how;
  staging.folder = stagingFolder;
  installation.create(staging);
  const auto source = makeFileEngine(installation.clock(), {.codes = true});
  Transferred done = Import(installation.library(), *source, refused, observer).run(old);
  refused.decide();
  doubtControllers(installation.library());
  installation.leave();
  return done;
}

}  // namespace

Transferred importInstallation(Prompts& prompts, const Opening& how, const OldFiles& old,
                               RefusedRows& refused, bool trial, Observer& observer) {
  if (trial) {
    if (files::folderExists(how.folder)) {
      const Within target(how.folder);
      requireFree(how.folder);
    }
    const files::ScratchFolder folder("voxa-trial-");
    const Within inFolder(folder.path());
    return importHere(prompts, how, old, refused, observer);
  }
  files::makeFolders(how.folder);
  const Within target(how.folder);
  const InstallationLock lock;
  removeUnfinishedImport();
  requireFree(how.folder);
  Transferred done;
  try {
    done = importHere(prompts, how, old, refused, observer);
    for (const char* name : movedFirst) moveHere(name);
    moveHere(mainFile);
  } catch (...) {
    removeUnfinishedImport();
    throw;
  }
  removeUnfinishedImport();
  return done;
}

}  // namespace voxa
