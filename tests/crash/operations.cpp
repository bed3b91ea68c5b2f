#include "crash/operations.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "app/glob.h"
#include "app/library.h"
#include "app/qdb.h"
#include "engines/sqlite/engine.h"
#include "journal/journal.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/driver/library_driver.h"
#include "platform/text.h"
#include "platform/ui/prompts.h"
#include "platform/ui/scripted_prompts.h"
#include "site/site.h"

namespace voxa::crash {

namespace {

constexpr const char* copyName = "copy.mdb";

std::string number(int n) {
  return std::to_string(n);
}

void nothingMore(const Plant& /*plant*/, Findings& /*findings*/) {}

/// How many rows a statement gives; -1 when there is no such database or table.
int count(const Plant& plant, const char* file, const std::string& sql) {
  try {
    SystemClock clock;
    const auto engine = makeSqliteEngine(clock);
    return static_cast<int>(engine->open((plant.folder / file).string())->openRecordset(sql)->recordCount());
  } catch (const Error&) {
    return -1;
  }
}

/// Whether the bytes are those of one of the database files.
bool isKept(const Plant& plant, const std::string& bytes) {
  return std::any_of(fs::directory_iterator(plant.folder), {}, [&](const auto& entry) {
    return toUpper(entry.path().extension().string()) == ".MDB" && bytesOf(entry.path()) == bytes;
  });
}

void recordSwipes(Plant& plant, int swipes) {
  site::Site site(plant.site);
  const auto controllers = site.list();
  for (int i = 0; i < swipes; ++i) {
    const auto& controller =
        controllers[static_cast<std::size_t>(plant.below(static_cast<int>(controllers.size())))];
    const std::string code = number(80'000'000 + static_cast<int>(plant.recorded.size()));
    site.swipe({.station = controller.station, .address = controller.address, .code = code});
    plant.recorded.push_back(code);
  }
}

// init

void prepareInit(Plant& plant) {
  for (const auto& entry : fs::directory_iterator(plant.folder)) fs::remove_all(entry.path());
}

int init(const Plant& plant) {
  return plant.become({"init"});
}

bool initDone(const Plant& plant) {
  const char* const texts = "select Mnemonic from Strings";
  return count(plant, "KRV.mdb", "select Id from Stations") == 1 &&
         count(plant, "Journal.MDB", "select Id from Journal") == 0 &&
         count(plant, "I18N.MDB", texts) == count(plant, "../plant.built/I18N.MDB", texts);
}

// import of the installation as it was built

int import(const Plant& plant) {
  const fs::path old = plant.folder.parent_path() / "plant.built";
  return plant.become(
      {"import", "mdb", (old / "KRV.mdb").string(), "--journal", (old / "Journal.MDB").string()});
}

bool importDone(const Plant& plant) {
  const auto same = [&](const char* file, const std::string& sql) {
    return count(plant, file, sql) == count(plant, (std::string("../plant.built/") + file).c_str(), sql);
  };
  return same("KRV.mdb", "select Id from Stations") && same("KRV.mdb", "select Id from Cardholders") &&
         same("Journal.MDB", "select Id from Journal") && same("I18N.MDB", "select Mnemonic from Strings") &&
         !fs::exists(plant.folder / "import~unfinished");
}

// card batch

void prepareBatch(Plant& plant) {
  plant.batchFirst = 1000 + plant.below(8000);
}

int batch(const Plant& plant) {
  return plant.become({"card", "batch", "--first-number", number(plant.batchFirst), "--first-code",
                       number(500'000 + plant.batchFirst), "--count", number(Plant::batchCards), "--group",
                       "Staff"});
}

bool batchDone(const Plant& plant) {
  return count(plant, "KRV.mdb", "select Id from Cardholders where CardNum >= " + number(plant.batchFirst)) ==
         Plant::batchCards;
}

// download

void prepareDownload(Plant& plant) {
  std::vector<std::string> changes;
  const auto time = [&] {
    return "'0" + number(5 + plant.below(3)) + ":" + number(10 + plant.below(50)) + "'";
  };
  for (const char* id : {"2", "3"}) {
    changes.push_back("update DailyPrograms set StartFirstInterval = " + time() +
                      ", DailyProgramFlagD = True where Id = " + id);
  }
  for (const char* id : {"1", "2"}) {
    changes.push_back("update WeeklyPrograms set DailyProgDay1 = " + number(plant.below(4)) +
                      ", WeeklyProgramFlagD = True where ProgType = 'C' and ProgNum = " + id);
    changes.push_back("update Holidays set [Date] = #" + number(1 + plant.below(12)) + "/" +
                      number(1 + plant.below(28)) + "/2028#, HolidayFlagD = True where Id = " + id);
  }
  if (plant.below(2) == 0) {
    changes.push_back("update AccGroupReaders set WeeklyProgNum = " + number(plant.below(3)) +
                      ", FlagD = True where AccessGroupId = 2");
  }
  for (int card = 1; card <= 130; ++card) {
    const std::string row = " where CardNum = " + number(card);
    if (plant.below(3) == 0) {
      const std::string code = zeroPadded((1 + plant.below(9'000)) * 10'000 + card, 8);
      changes.push_back("update Cardholders set CardCode = '" + code + "', CardCodeFlagD = True" + row);
    }
    if (plant.below(8) == 0) {
      changes.push_back("update Cardholders set Validated = False, ValidatedFlagD = True" + row);
    }
  }
  plant.change(changes);
}

int download(const Plant& plant) {
  return plant.become({"download", "all"});
}

bool downloadDone(const Plant& plant) {
  return count(plant, "KRV.mdb", "select Id from DailyPrograms where DailyProgramFlagD = True") == 0 &&
         count(plant, "KRV.mdb",
               "select ProgNum from WeeklyPrograms where WeeklyProgramFlagD = True and ProgNum > 0") == 0 &&
         count(plant, "KRV.mdb", "select Id from Holidays where HolidayFlagD = True") == 0 &&
         count(plant, "KRV.mdb", "select ReaderId from AccGroupReaders where FlagD = True") == 0 &&
         count(plant, "KRV.mdb",
               "select Id from Cardholders where CardCodeFlagD = True or ValidatedFlagD = True") == 0;
}

// read

void prepareRead(Plant& plant) {
  recordSwipes(plant, 10 + plant.below(100));
  // Sometimes a memory was read into the journal and not cleared, or the line breaks off within a record.
  if (plant.below(4) == 0) {
    site::Faults faults;
    faults.refuseClear = 4;
    site::Site(plant.site).setFaults(1, 1, faults);
    (void)plant.run([&] { return plant.become({"read"}); }, {});
    recordSwipes(plant, plant.below(20));
    plant.clearFaults();
  }
  if (plant.below(4) == 0) {
    site::Faults faults;
    faults.cutAfter = plant.below(8);
    faults.cutHalfLine = faults.cutOnce = true;
    site::Site(plant.site).setFaults(1, 2, faults);
  }
}

int read(const Plant& plant) {
  return plant.become({"read"});
}

bool readDone(const Plant& plant) {
  return onControllers(plant.site).empty();
}

// db restore

void prepareRestore(Plant& plant) {
  fs::copy_file(plant.folder / "KRV.mdb", plant.folder / copyName);
  plant.change({"insert into AccessGroups (Id, Name) values (77, 'Later')"});
}

/// A name that no file has yet.
std::string unused(const Plant& plant, int n = 1) {
  while (fs::exists(plant.folder / ("saved" + number(n) + ".mdb"))) ++n;
  return (plant.folder / ("saved" + number(n) + ".mdb")).string();
}

int restore(const Plant& plant) {
  return plant.become(
      {"db", "restore", (plant.folder / copyName).string(), "--yes", "--save-first", unused(plant)});
}

bool restoreDone(const Plant& plant) {
  return bytesOf(plant.folder / "KRV.mdb") == bytesOf(plant.folder / copyName) &&
         isKept(plant, plant.mainBefore);
}

void restoreWhole(const Plant& plant, Findings& findings) {
  if (!isKept(plant, plant.mainBefore))
    findings.wrong.emplace_back("the database before the restore is lost");
  const std::string main = bytesOf(plant.folder / "KRV.mdb");
  if (main != plant.mainBefore && main != bytesOf(plant.folder / copyName)) {
    findings.wrong.emplace_back("the main database is neither the copy nor the one before");
  }
}

// createDB, which saves what there was

void prepareCreate(Plant& plant) {
  recordSwipes(plant, 20);
  (void)plant.run([&] { return plant.become({"read"}); }, {});
}

int create(const Plant& plant) {
  fs::current_path(plant.folder);
  const std::string folder = plant.folder.string();
  SystemClock clock;
  LibraryDriver driver;
  ScriptedPrompts prompts;  // says Yes to saving, and saves under names that nothing has
  prompts.choices = {unused(plant), unused(plant, 100)};
  const auto engine = makeSqliteEngine(clock);
  Library library({*engine, driver, prompts, clock});
  const Glob glob(library);
  glob.Initialize(folder + "\\KRV.mdb", folder + "\\S001.ini", folder + "\\COM.LOG", folder);
  prompts.boxes.clear();  // after a kill there may be nothing to open, which is said and no failure
  const bool good =
      glob.QDB().createDB() == 0 && (fs::exists(Journal::dbName) || glob.QDB().Journal().createDB() == 0);
  for (const auto& box : prompts.boxes) std::cerr << box.prompt << '\n';
  return good ? 0 : 1;
}

bool createDone(const Plant& plant) {
  return count(plant, "Journal.MDB", "select Id from Journal") == 0 &&
         count(plant, "KRV.mdb", "select Id from Stations") == 1 &&
         count(plant, "KRV.mdb", "select Id from Readers") == 0;
}

void createWhole(const Plant& plant, Findings& findings) {
  if (!isKept(plant, plant.mainBefore)) findings.wrong.emplace_back("the database before createDB is lost");
}

}  // namespace

const std::vector<Operation>& operations() {
  static const std::vector<Operation> all = {
      {"init", prepareInit, init, initDone, nothingMore, true, true},
      {"import mdb", prepareInit, import, importDone, nothingMore, true, true},
      {"card batch",
       prepareBatch,
       batch,
       batchDone,
       nothingMore,
       true,
       true,
       {{"read"},
        {"status"},
        {"download", "cards"},
        {"card", "batch", "--first-number", "200", "--first-code", "200", "--count", "2", "--group",
         "Cars"}}},
      {"download", prepareDownload, download, downloadDone, nothingMore, true, true},
      {"read", prepareRead, read, readDone, nothingMore, true, true},
      {"db restore", prepareRestore, restore, restoreDone, restoreWhole, true, false},
      {"createDB", prepareCreate, create, createDone, createWhole, false, false},
  };
  return all;
}

}  // namespace voxa::crash
