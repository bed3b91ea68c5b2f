#include "app/qdb.h"

#include <algorithm>

#include "access/access_group.h"
#include "access/alarm.h"
#include "access/badge_format.h"
#include "access/cardholder.h"
#include "app/library.h"
#include "app/main_database.h"
#include "comm/com.h"
#include "comm/com_status_table.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "files/database_files.h"
#include "journal/journal.h"
#include "platform/database/database.h"
#include "platform/database/schema_version.h"
#include "platform/text.h"
#include "platform/ui/prompts.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"
#include "tables/itable.h"

namespace voxa {

QDB::QDB(Library& library)
    : library_(library),
      stations_(std::make_unique<::voxa::Station>(library)),
      dailyPrograms_(std::make_unique<::voxa::DailyProgram>(library)),
      holidays_(std::make_unique<::voxa::Holidays>(library)),
      weeklyPrograms_(std::make_unique<::voxa::WeeklyProgram>(library)),
      readers_(std::make_unique<::voxa::Reader>(library)),
      accessGroups_(std::make_unique<::voxa::AccessGroup>(library)),
      cardholders_(std::make_unique<::voxa::Cardholder>(library)),
      journal_(std::make_unique<::voxa::Journal>(library)),
      alarms_(std::make_unique<::voxa::Alarm>(library)),
      badgeFormat_(std::make_unique<::voxa::BadgeFormat>(library)) {
  registerTable(*stations_);
  registerTable(*dailyPrograms_);
  registerTable(*holidays_);
  registerTable(*weeklyPrograms_);
  registerTable(*readers_);
  registerTable(*accessGroups_);
  registerTable(*cardholders_);
  registerTable(*journal_);
  registerTable(*alarms_);
}

QDB::~QDB() {
  try {
    if (database_) database_->close();
  } catch (const Error&) {
    // The process is letting go of the file; what was committed is safe, and nobody is left to tell.
  }
}

Database& QDB::database() const {
  return *requireOpen(database_);
}

void QDB::registerTable(Table& table) {
  registry_.push_back(&table);
}

ITable& QDB::tables(std::string_view tableName) const {
  const auto found = std::find_if(registry_.begin(), registry_.end(),
                                  [&](const ITable* t) { return equalNoCase(t->Name(), tableName); });
  if (found == registry_.end()) {
    throw Error(err::invalidArgument, "Invalid argument: no table '" + std::string(tableName) + "'");
  }
  return **found;
}

void QDB::openFile(const std::string& path) {
  auto opened = library_.engine().open(path);
  bringForward(library_.engine(), *opened, mainDatabaseSteps());
  database_ = std::move(opened);
}

std::int16_t QDB::openCommonDB() {
  const std::string path = library_.Com().AppDB;
  return library_.attempt({"msgCantLoad", path}, [&] {
    openFile(path);
    if (library_.Com().pDailyPrograms4Zones == 1) dailyPrograms_->provideFourZones();
    library_.ledger().provide();
  });
}

std::int16_t QDB::openDB() {
  openCommonDB();
  journal_->openDB();
  return 0;
}

/// Opens `Com.AppDB` after the file of the open database was closed; when that fails, as has been told, the
/// database that was open.
void QDB::reopen(const std::string& name) {
  if (openCommonDB() == 0 || !database_ || database_->isOpen()) return;
  library_.attempt([&] { openFile(name); });
  library_.error().clear();
}

/// saveBeforeReplace, behind which a database that nothing may replace is open again, whatever failed.
bool QDB::mayReplace(const Database& database, const char* mnemonic, bool overwriteAllowed,
                     const std::function<void()>& openAgain) {
  try {
    if (!saveBeforeReplace(library_, database.name(), mnemonic, overwriteAllowed)) return true;
  } catch (...) {
    openAgain();
    throw;
  }
  openAgain();
  return false;
}

bool QDB::confirmReplace() {
  const std::shared_ptr<Database> current = database_;
  if (!current || !current->isOpen()) return true;
  return mayReplace(*current, "msgCreateSaveDBYN", true, [&] { reopen(current->name()); });
}

void QDB::buildTables() {
  // One transaction: a crash in the middle leaves no half-built tables, and the disk is waited for once.
  Transaction transaction(library_.engine(), *database_);
  for (Table* table : registry_) {
    if (table == journal_.get()) continue;
    if (table == dailyPrograms_.get()) {
      dailyPrograms_->createWithFourZones();
    } else {
      table->create();
    }
    table->insertDefaultRecs();
  }
  createComStatus(*database_);
  for (Table* table : registry_) table->createRelations();
  database_->setSchemaVersion(mainDatabaseSteps().size());
  transaction.commit();
}

std::int16_t QDB::createDB() {
  return library_.attempt({"msgCantCreateDB", "QDB.createDB"}, [&]() -> std::int16_t {
    if (!confirmReplace()) return -1;
    const BusyPointer busy(library_.prompts());
    database_.reset();
    database_ = library_.engine().create(library_.Com().AppDB);
    library_.showLater([&] { buildTables(); });
    if (const auto journal = journal_->DB(); journal && journal->isOpen()) {
      if (mayReplace(*journal, "msgJourSaveYN", false, [&] { journal_->openDB(); })) journal_->createFile();
    }
    return 0;
  });
}

std::int16_t QDB::throughClosedFile(const char* method,
                                    const std::function<std::int16_t(const std::string&)>& work) {
  std::int16_t status = 0;
  const std::string name = database_ ? database_->name() : "";
  if (database_ && database_->isOpen()) {
    status = library_.attempt({"", method, Value(library_.Com().AppDB)}, [&] { return work(name); });
  }
  reopen(name);
  return status;
}

std::int16_t QDB::saveDB() {
  return throughClosedFile("QDB.saveDB",
                           [&](const std::string& name) { return saveDatabaseAs(library_, name); });
}

std::vector<TableDef> QDB::definitions() {
  std::vector<TableDef> all;
  for (Table* table : registry_) {
    if (table == journal_.get()) continue;
    for (TableDef& definition : table->definitions()) all.push_back(std::move(definition));
  }
  all.push_back(comStatusDefinition());
  return all;
}

std::int16_t QDB::restoreDB() {
  return throughClosedFile("QDB.restoreDB", [&](const std::string& name) {
    return restoreDatabase(library_, name, "msgReplaceSaveDBYN", [&](Database& backup) {
      checkBroughtForward(library_.engine(), backup, mainDatabaseSteps(), name + "~trial",
                          [&](Database& future) { requireMainDatabase(future, definitions()); });
    });
  });
}

}  // namespace voxa
