#include "support/installation.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "app/qdb.h"
#include "comm/com.h"
#include "engines/sqlite/engine.h"
#include "messages/strings.h"
#include "support/harness.h"

namespace voxa::bench {

namespace {

std::string makeFolder(const std::string& parent) {
  std::string path = parent + "/bench-XXXXXX";
  require(mkdtemp(path.data()) != nullptr, "Cannot make a folder in " + parent);
  return path;
}

}  // namespace

std::int16_t IdleDriver::call(ComCommandsEnum command, std::int16_t station, std::int16_t controller) {
  if (onCall) onCall(command, station, controller);
  if (command == CmReadDate && controller == 0) {
    const std::string number = std::to_string(1000 + station).substr(1);
    std::ofstream(folder + "/RS" + number + ".OUT", std::ios::binary) << statuses << "\r\n";
  }
  return 100;
}

Installation::Installation()
    : previousFolder_(std::filesystem::current_path().string()),
      folder_(makeFolder(previousFolder_)),
      databasePath_(folder_ + "/main.mdb") {
  driver_.folder = folder_;
  std::filesystem::current_path(folder_);
  restart();
  require(glob_->Strings().createDB() == 0, "Cannot create the message store");
  glob_->insertStrings();
  restart();
}

Installation::~Installation() {
  glob_.reset();
  library_.reset();
  engine_.reset();
  std::filesystem::current_path(previousFolder_);
  std::filesystem::remove_all(folder_);
}

void Installation::restart() {
  glob_.reset();
  library_.reset();
  prompts_.boxes.clear();
  engine_ = makeSqliteEngine(clock_);
  library_ = std::make_unique<Library>(Library::Seams{*engine_, driver_, prompts_, clock_});
  glob_ = std::make_unique<Glob>(*library_);
  Com& com = library_->Com();
  com.AppDB = databasePath_;
  com.IniFile = folder_ + "\\S001.ini";
  com.logFileName = folder_ + "\\COM.LOG";
  com.Chemin = folder_;
}

void Installation::createDatabase() {
  const std::int16_t status = library_->QDB().createDB();
  requireSilence();
  require(status == 0, "Cannot create the database");
}

void Installation::addCardholders(int count) {
  Transaction transaction(*engine_);
  for (int n = 1; n <= count; ++n) {
    const std::string number = std::to_string(n);
    db().execute("insert into Cardholders (CardNum, Name, CardCode) values (" + number + ", 'Card " + number +
                 "', '" + number + "')");
  }
  transaction.commit();
}

void Installation::addReaders() {
  constexpr int controllers = 16;
  constexpr int positions = 4;
  Transaction transaction(*engine_);
  for (int n = 0; n < controllers * positions; ++n) {
    const std::string id = std::to_string(n + 1);
    db().execute("insert into Readers (Id, Name, StationId, ControllerAddress, Position) values (" + id +
                 ", 'Reader " + id + "', 1, " + std::to_string(n / positions + 1) + ", " +
                 std::to_string(n % positions + 1) + ")");
  }
  transaction.commit();
  driver_.statuses.assign(controllers, '1');
}

void Installation::addStaff(int controllers) {
  Transaction transaction(*engine_);
  db().execute("insert into AccessGroups (Id, Name) values (1, 'Staff')");
  db().execute(
      "insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum) "
      "select 1, Id, 'C', 0 from Readers where ControllerAddress <= " +
      std::to_string(controllers));
  db().execute("update Cardholders set AccessGroupId = 1");
  transaction.commit();
}

void Installation::addLines(int count) {
  Transaction transaction(engine());
  Database& database = db();
  for (int line = 2; line <= count; ++line) {
    const std::string number = std::to_string(line);
    const std::string first = std::to_string(100 * line);
    database.execute("insert into Stations (Id, Name, Active) values (" + number + ", 'Line " + number +
                     "', True)");
    database.execute(
        "insert into Readers (Id, Name, StationId, ControllerAddress, Position, ControllerType) "
        "select Id + " +
        first + ", Name & ' of " + number + "', " + number +
        ", ControllerAddress, Position, ControllerType from Readers where StationId = 1");
    database.execute(
        "insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum) "
        "select 1, Id, 'C', 0 from Readers where StationId = " +
        number);
  }
  transaction.commit();
}

std::string Installation::copyDatabase() const {
  std::string copy = folder_ + "/rival.mdb";
  std::filesystem::copy_file(databasePath_, copy);
  return copy;
}

Database& Installation::db() const {
  return *library_->QDB().DB();
}

void Installation::requireSilence() const {
  require(prompts_.boxes.empty(), prompts_.boxes.empty() ? "" : prompts_.boxes.front().prompt);
}

std::string contents(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream all;
  all << in.rdbuf();
  return all.str();
}

}  // namespace voxa::bench
