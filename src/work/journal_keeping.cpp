#include "work/journal_keeping.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <unordered_map>
#include <utility>

#include "journal/journal.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/files.h"
#include "platform/observer.h"
#include "work/copies.h"
#include "work/installation.h"
#include "work/journal_hours.h"
#include "work/journal_list.h"
#include "work/journal_scan.h"
#include "work/moments.h"
#include "work/refusal.h"
#include "work/row_copy.h"
#include "work/transfer.h"

namespace voxa {

namespace {

namespace fs = std::filesystem;

/// Rows of a part that is compared at once.
constexpr std::size_t partRows = 50'000;

std::vector<IndexDef> indexes() {
  return {{.name = journalDateIndex, .fields = {"Date"}},
          {.name = "Cardholder", .fields = {"CardholderName", "Date"}}};
}

std::uint64_t sizeOf(const Database& database) {
  std::error_code none;
  const auto size = fs::file_size(files::native(database.name()), none);
  return none ? 0 : size;
}

std::size_t countOf(Database& journal, const JournalCondition& condition) {
  std::size_t count = 0;
  journal.visitRows(
      condition.statement("count(*) as Transactions"),
      [&](const Value* row) {
        count = static_cast<std::size_t>(row[0].toInt32());
        return false;
      },
      condition.values());
  return count;
}

/// All columns but Id, which comes first and is the row's place only.
std::vector<std::string> fieldsBehindId(Installation& installation) {
  std::vector<std::string> fields = openedJournal(installation)->tableDef("Journal").fieldNames();
  fields.erase(fields.begin());
  return fields;
}

/// "Id" and the columns, the date in front.
std::string selected(const std::vector<std::string>& fields) {
  return "Id, " + nameList(fields);
}

/// Equal for rows that are the same.
std::string keyOf(const Value* row, std::size_t fields) {
  std::string key;
  for (const Value* value = row; value != row + fields; ++value) {
    std::string text;
    if (const auto* moment = std::get_if<DateTime>(&value->data())) {
      text.resize(sizeof moment->days);
      std::memcpy(text.data(), &moment->days, text.size());
    } else if (!value->isNull()) {
      text = value->toText();
    }
    key += (value->isNull() ? "-" : std::to_string(text.size())) + ":" + text;
  }
  return key;
}

bool isSameFile(const std::string& a, const std::string& b) {
  std::error_code none;
  return fs::equivalent(files::native(a), files::native(b), none);
}

JournalCondition conditionOf(const JournalDeletion& deletion) {
  JournalCondition condition;
  condition.add("Id <= ?", "long", deletion.lastId);
  condition.add("[Date] < ?", "datetime", deletion.before);
  return condition;
}

constexpr const char* unfinishedEnd = "~new";

/// Makes the folder, or takes out of it what a kill has left half saved.
void provideBackupFolder(Installation& installation) {
  const std::string folder = backupFolder(installation);
  if (!files::folderExists(folder)) return files::makeFolder(folder);
  for (const std::string& name : files::list(folder)) {
    if (name.starts_with(deletedJournalName) && name.find(unfinishedEnd) != std::string::npos)
      (void)files::removeRegular(folder + "\\" + name);
  }
}

}  // namespace

std::string backupFolder(Installation& installation) {
  return installation.paths().Chemin + "\\Backup";
}

JournalIndexing indexJournal(Installation& installation) {
  Database& journal = *openedJournal(installation);
  const auto start = std::chrono::steady_clock::now();
  JournalIndexing done{.bytesBefore = sizeOf(journal)};
  Transaction transaction(installation.engine(), journal);
  for (const IndexDef& index : indexes()) {
    if (journal.tableDef("Journal").index(index.name) == nullptr) journal.addIndex("Journal", index);
  }
  transaction.commit();
  done.rows = countOf(journal, {});
  done.bytesBehind = sizeOf(journal);
  done.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return done;
}

bool dropJournalIndex(Installation& installation) {
  Database& journal = *openedJournal(installation);
  bool any = false;
  Transaction transaction(installation.engine(), journal);
  for (const IndexDef& index : indexes()) {
    if (journal.tableDef("Journal").index(index.name) == nullptr) continue;
    journal.deleteIndex("Journal", index.name);
    any = true;
  }
  transaction.commit();
  return any;
}

void saveJournal(Installation& installation, const std::string& path, bool replace) {
  requireForeignFile(installation, path);
  Database& journal = *openedJournal(installation);
  const std::string folder = fs::path(path).parent_path().string();
  if (!folder.empty() && !files::folderExists(folder)) throw Refusal("there is no folder " + folder);
  if (files::folderExists(path)) throw Refusal(path + " is a folder: name the file of the copy");
  if (!files::exists(path)) return journal.copyTo(path);
  if (!replace) throw Refusal(path + " exists and stays as it is; --force replaces it");
  const std::string complete = path + "~new";
  (void)files::removeRegular(complete);
  journal.copyTo(complete);
  try {
    files::copy(complete, path);
  } catch (...) {
    (void)files::removeRegular(complete);
    throw;
  }
  (void)files::removeRegular(complete);
}

std::shared_ptr<Database> openSavedJournal(Installation& installation, const std::string& path) {
  std::error_code noSuchFile;
  const fs::path found = fs::canonical(files::native(path), noSuchFile);
  const std::string file = noSuchFile ? path : found.string();
  if (isSameFile(file, openedJournal(installation)->name()))
    throw Refusal(path + " is the journal of the installation: name a file that was saved");
  std::shared_ptr<Database> saved;
  try {
    saved = installation.engine().open(file, FileUse::reading);
  } catch (const Error& failure) {
    if (failure.number() == err::dbLocked) throw;
    if (!files::exists(path)) throw Refusal("there is no file " + path);
    throw Refusal(path + " is no saved journal that can be read: " + failure.description());
  }
  const auto tables = saved->tableNames();
  if (std::find(tables.begin(), tables.end(), "Journal") != tables.end()) {
    const TableDef& table = saved->tableDef("Journal");
    const auto wanted = openedJournal(installation)->tableDef("Journal").fieldNames();
    if (std::all_of(wanted.begin(), wanted.end(),
                    [&](const auto& field) { return table.field(field) != nullptr; }))
      return saved;
  }
  saved->close();
  throw Refusal(path + " is no journal: it has no table Journal with the columns of one");
}

JournalRestoring restoreJournal(Installation& installation, const std::string& path, Observer& observer) {
  Database& journal = *openedJournal(installation);
  const std::shared_ptr<Database> file = openSavedJournal(installation, path);
  const std::vector<std::string> fields = fieldsBehindId(installation);
  const std::string columns = selected(fields);
  JournalRestoring done;
  {
    Transaction transaction(installation.engine(), journal);
    const JournalHours here(journal, {});
    const JournalHours saved(*file, {});
    const std::size_t total = saved.rowsOf({}).count;
    RowCopy copy(journal, journal.tableDef("Journal"), fields, failAtRow);
    for (const HourSpan& part : JournalHours::parts({&here, &saved}, partRows)) {
      if (saved.rowsOf(part).count == 0) continue;
      std::unordered_map<std::string, std::size_t> known;
      here.visit(part, {}, columns, [&](const Value* row) { ++known[keyOf(row + 1, fields.size())]; });
      saved.visit(part, {}, columns, [&](const Value* row) {
        observer.progress("Comparing row", ++done.rows, total);
        const auto same = known.find(keyOf(row + 1, fields.size()));
        if (same != known.end() && same->second > 0) {
          --same->second;
        } else {
          copy.write(row + 1);
          ++done.added;
        }
      });
    }
    transaction.commit();
  }
  file->close();
  return done;
}

JournalDeletion planJournalDeletion(Installation& installation, const std::string& before) {
  const Clock& clock = installation.clock();
  Database& journal = *openedJournal(installation);
  JournalDeletion deletion;
  deletion.before = writtenSpan(before, clock).from;
  deletion.lastId = lastJournalRow(journal);
  deletion.rows = countOf(journal, conditionOf(deletion));
  const bool day = formatDateTime(deletion.before, "hhnn") == "0000";
  const std::string name = deletedJournalName +
                           formatDateTime(deletion.before, day ? "yyyy-mm-dd" : "yyyy-mm-dd hh.nn") + ", " +
                           formatDateTime(clock.now(), "ddmmmyyyy-hh.nn.ss");
  deletion.file = files::native(backupFolder(installation) + "\\" + name + ".MDB");
  return deletion;
}

void deleteFromJournal(Installation& installation, const JournalDeletion& deletion, Observer& observer) {
  Database& journal = *openedJournal(installation);
  DatabaseEngine& engine = installation.engine();
  provideBackupFolder(installation);
  const std::string unfinished = deletion.file + unfinishedEnd;
  const JournalCondition condition = conditionOf(deletion);
  std::size_t rows = 0;
  {
    const std::shared_ptr<Database> saved = engine.create(unfinished);
    Transaction transaction(engine, *saved);
    TableDef table = journal.tableDef("Journal");
    std::erase_if(table.indexes, [](const IndexDef& index) { return !index.isUnique(); });
    saved->createTable(table);
    saved->setSchemaVersion(journal.schemaVersion());
    RowCopy copy(*saved, saved->tableDef("Journal"), table.fieldNames(), failAtRow);
    journal.visitRows(
        condition.statement(nameList(table.fieldNames())),
        [&](const Value* row) {
          copy.write(row);
          observer.progress("Saving row", copy.read(), deletion.rows);
          return true;
        },
        condition.values());
    copy.compare();
    rows = copy.read();
    transaction.commit();
    saved->close();
  }
  files::rename(unfinished, deletion.file);
  Transaction transaction(engine, journal);
  const int deleted = journal.execute(condition.change("delete from Journal"), condition.values());
  if (static_cast<std::size_t>(deleted) != rows) {
    throw Refusal(
        "the journal has changed while its rows were saved: nothing was deleted, try again; what was "
        "saved is in " +
        deletion.file);
  }
  transaction.commit();
}

}  // namespace voxa
