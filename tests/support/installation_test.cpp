#include "support/installation_test.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <sstream>
#include <thread>

#include "app/qdb.h"
#include "comm/com.h"
#include "engines/language/dialect.h"
#include "engines/sqlite/engine.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/datetime.h"
#include "platform/text.h"

namespace voxa::test {

namespace {

std::string contents(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

std::int16_t RecordingDriver::call(ComCommandsEnum command, std::int16_t stationId,
                                   std::int16_t controllerAddr) {
  calls.push_back(
      {command, stationId, controllerAddr, command == CmSendCommand ? contents("COMMAND.TXT") : ""});
  const std::int16_t result = answer(calls.back());
  if (command != CmReadDate || controllerAddr != 0) return result;
  const std::string name = "RS" + std::to_string(1000 + stationId).substr(1) + ".OUT";
  if (const auto own = resultFiles.find(stationId); own != resultFiles.end()) {
    std::ofstream(name, std::ios::binary) << own->second;
  } else if (result == 100 && resultFile) {
    std::ofstream(name, std::ios::binary) << *resultFile << "\r\n";
  }
  return result;
}

std::string RecordingDriver::sent() const {
  std::string all;
  for (const Call& call : calls) all += call.commandFile;
  return all;
}

std::size_t RecordingDriver::count(ComCommandsEnum command) const {
  return static_cast<std::size_t>(
      std::count_if(calls.begin(), calls.end(), [&](const Call& c) { return c.command == command; }));
}

void Watched::requireNoLock(const std::string& what) const {
  if (engine == nullptr) return;
  for (const auto& database : engine->databases()) {
    sqlite3* other = nullptr;
    if (sqlite3_open_v2(database->name().c_str(), &other, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
      EXPECT_NE(sqlite3_exec(other, "BEGIN EXCLUSIVE; ROLLBACK", nullptr, nullptr, nullptr), SQLITE_BUSY)
          << database->name() << " is locked: " << what;
    }
    sqlite3_close(other);
  }
}

Answer Watched::messageBox(const std::string& prompt, int style, const std::string& title) {
  requireNoLock(prompt);
  beforeBox();
  return prompts_.messageBox(prompt, style, title);
}

std::string Watched::chooseFile(const FileDialog& dialog) {
  requireNoLock(dialog.title);
  return prompts_.chooseFile(dialog);
}

std::int16_t Watched::call(ComCommandsEnum command, std::int16_t stationId, std::int16_t controllerAddr) {
  const bool batch = engine != nullptr && engine->inTransaction();
  if (!batch) requireNoLock(std::string(driverNames[command]));
  return driver_.call(command, stationId, controllerAddr);
}

StillClock::StillClock() : moment(toDateTime({2026, 12, 24, 18, 5, 0})) {}

InstallationTest::InstallationTest() : previousFolder_(std::filesystem::current_path().string()) {
  std::string pattern = (std::filesystem::temp_directory_path() / "voxa-test-XXXXXX").string();
  folder = mkdtemp(pattern.data());
  std::filesystem::current_path(folder);
  restart();
}

InstallationTest::~InstallationTest() {
  glob.reset();
  library.reset();
  engine.reset();
  std::filesystem::current_path(previousFolder_);
  std::filesystem::remove_all(folder);
}

void InstallationTest::restart() {
  glob.reset();
  library.reset();
  engine = makeSqliteEngine(clock);
  watched.engine = engine.get();
  library = std::make_unique<Library>(Library::Seams{*engine, watched, watched, clock});
  glob = std::make_unique<Glob>(*library);
}

void InstallationTest::createInstallation() {
  ASSERT_EQ(glob->Strings().createDB(), 0);
  glob->insertStrings();
  Com& com = glob->Com();
  com.AppDB = folder + "\\KRV.mdb";
  com.IniFile = folder + "\\S001.ini";
  com.logFileName = folder + "\\COM.LOG";
  com.Chemin = folder;
  ASSERT_EQ(glob->QDB().createDB(), 0) << boxes().back();
  ASSERT_EQ(glob->QDB().Journal().createDB(), 0);
  ASSERT_TRUE(boxes().empty());
}

void InstallationTest::addStation(int id, const std::string& name, bool active) {
  db().execute("insert into Stations (Id, Name, Active) values (" + std::to_string(id) + ", '" + name +
               "', " + (active ? "True" : "False") + ")");
}

void InstallationTest::addReader(int id, const std::string& name, int station, int controller, int position) {
  const auto number = [](int n) { return std::to_string(n); };
  db().execute("insert into Readers (Id, Name, StationId, ControllerAddress, Position) values (" +
               number(id) + ", '" + name + "', " + number(station) + ", " + number(controller) + ", " +
               number(position) + ")");
}

std::string InstallationTest::query(const std::string& sql) {
  const auto rows = db().openRecordset(sql);
  if (rows->eof()) return "none";
  const Value value = rows->get(std::size_t{0});
  return value.isNull() ? "Null" : value.toText();
}

void InstallationTest::plain(const std::string& file, const std::string& sql) {
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &other), SQLITE_OK);
  (void)sqlite3_create_collation(
      other, dialect::collation, SQLITE_UTF8, nullptr,
      [](void*, int size, const void* one, int sizeOther, const void* another) {
        return compareNoCase({static_cast<const char*>(one), static_cast<std::size_t>(size)},
                             {static_cast<const char*>(another), static_cast<std::size_t>(sizeOther)});
      });
  EXPECT_EQ(
      sqlite3_exec(other, ("PRAGMA foreign_keys=OFF; PRAGMA ignore_check_constraints=ON; " + sql).c_str(),
                   nullptr, nullptr, nullptr),
      SQLITE_OK)
      << sqlite3_errmsg(other);
  sqlite3_close(other);
}

void InstallationTest::whileChangedElsewhere(const std::string& file, const std::function<void()>& work) {
  std::promise<void> locked;
  std::thread other([&] {
    sqlite3* raw = nullptr;
    EXPECT_EQ(sqlite3_open(file.c_str(), &raw), SQLITE_OK);
    sqlite3_busy_timeout(raw, 5000);
    EXPECT_EQ(
        sqlite3_exec(raw, "BEGIN IMMEDIATE; PRAGMA application_id=0x566f7841", nullptr, nullptr, nullptr),
        SQLITE_OK);
    locked.set_value();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(sqlite3_exec(raw, "COMMIT", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(raw);
  });
  locked.get_future().wait();
  work();
  other.join();
}

std::string InstallationTest::textOf(const std::string& file) const {
  return contents(file);
}

void InstallationTest::write(const std::string& file, const std::string& text) const {
  std::ofstream(file, std::ios::binary) << text;
}

std::string InstallationTest::oneLine(std::string text) {
  for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;) text.replace(at, 2, "|");
  return text;
}

void InstallationTest::answerAll(std::int16_t code) {
  driver.answer = [code](const auto&) { return code; };
}

std::string InstallationTest::calls() {
  std::string all;
  for (const auto& call : driver.calls) {
    all += (all.empty() ? "" : " ") + std::to_string(call.command) + ":" + std::to_string(call.station) +
           "," + std::to_string(call.address);
  }
  driver.calls.clear();
  return all;
}

std::vector<std::string> InstallationTest::boxes() {
  std::vector<std::string> shown;
  for (const auto& box : prompts.boxes) shown.push_back(oneLine(box.prompt));
  prompts.boxes.clear();
  return shown;
}

}  // namespace voxa::test
