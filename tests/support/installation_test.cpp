#include "support/installation_test.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <algorithm>

#include "app/qdb.h"
#include "comm/com.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/database/sqlite/engine.h"
#include "platform/datetime.h"

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
  library = std::make_unique<Library>(Library::Seams{*engine, driver, prompts, clock});
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
