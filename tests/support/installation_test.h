#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/glob.h"
#include "app/library.h"
#include "app/qdb.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/driver/driver.h"
#include "platform/ui/scripted_prompts.h"

namespace voxa::test {

/// A driver that notes its calls, with the command file as it was then, and answers as it was told.
class RecordingDriver : public Driver {
 public:
  struct Call {
    ComCommandsEnum command;
    std::int16_t station;
    std::int16_t address;
    std::string commandFile;  // only of CmSendCommand
    friend bool operator==(const Call&, const Call&) = default;
  };

  std::int16_t call(ComCommandsEnum command, std::int16_t stationId, std::int16_t controllerAddr) override;
  [[nodiscard]] int lastError() const override { return systemError; }

  /// The command files that were sent, one after the other.
  [[nodiscard]] std::string sent() const;
  /// How often that command was called.
  [[nodiscard]] std::size_t count(ComCommandsEnum command) const;

  std::vector<Call> calls;
  std::function<std::int16_t(const Call&)> answer = [](const Call&) { return std::int16_t{100}; };
  int systemError = 0;
  /// What a read of a whole station's dates that succeeds leaves as its result file; none: no file.
  std::optional<std::string> resultFile = "XXXXXXXXXXXXXXXX";
  /// What any read of a station's dates leaves as its result file, byte by byte. It comes before resultFile.
  std::map<std::int16_t, std::string> resultFiles;
};

/// A clock that stands still until a wait moves it.
class StillClock : public Clock {
 public:
  StillClock();
  [[nodiscard]] DateTime now() const override { return moment; }
  void wait(int seconds) override { moment.days += seconds / 86400.0; }

  DateTime moment;  // 24 December 2026, 18:05:00
};

/// The seams to a person and to the driver. Both may take long, and others wait for a database file that is
/// locked. So the test fails when one of them is called while a database file is locked. There is one
/// exception: a batch of cards is sent within its transaction.
class Watched : public Prompts, public Driver {
 public:
  Watched(Prompts& prompts, Driver& driver) : prompts_(prompts), driver_(driver) {}
  Answer messageBox(const std::string& prompt, int style, const std::string& title) override;
  std::string chooseFile(const FileDialog& dialog) override;
  void busy(bool on) override { prompts_.busy(on); }
  std::int16_t call(ComCommandsEnum command, std::int16_t stationId, std::int16_t controllerAddr) override;
  [[nodiscard]] int lastError() const override { return driver_.lastError(); }

  DatabaseEngine* engine = nullptr;  ///< its files are watched; none while a test itself locks them
  std::function<void()> beforeBox = [] {};

 private:
  void requireNoLock(const std::string& what) const;

  Prompts& prompts_;
  Driver& driver_;
};

/// A test in a temporary folder of its own, with the real database engine. The folder is the current one and
/// the working folder.
class InstallationTest : public ::testing::Test {
 public:
  ~InstallationTest() override;

 protected:
  InstallationTest();

  /// Makes a new context over the same folder, as a second process or a later one has it.
  void restart();
  /// Makes the message store, paths, main database and journal.
  void createInstallation();
  /// These add stations (id, active) beside the local station 1, and readers (name, station, controller,
  /// position).
  void addStation(int id, const std::string& name, bool active = true);
  void addReader(int id, const std::string& name, int station, int controller, int position);

  Database& db() { return *library->QDB().DB(); }
  /// The first field of the first row as text; "none" without a row, "Null" for Null.
  std::string query(const std::string& sql);
  [[nodiscard]] std::string textOf(const std::string& file) const;
  void write(const std::string& file, const std::string& text) const;
  /// The text with "|" for each CR LF.
  [[nodiscard]] static std::string oneLine(std::string text);
  /// From now on the driver answers every call with that code.
  void answerAll(std::int16_t code);
  /// The driver's calls since this was last called: "command:station,address", with blanks between.
  std::string calls();
  /// The prompts of the boxes shown since this was last called, with "|" for each CR LF.
  std::vector<std::string> boxes();
  /// Runs `work` while another program is changing the file, which takes a while.
  void whileChangedElsewhere(const std::string& file, const std::function<void()>& work);
  /// Runs an SQLite statement directly, so no rule of the tables stops it.
  static void plain(const std::string& file, const std::string& sql);

  std::string folder;
  StillClock clock;
  RecordingDriver driver;
  ScriptedPrompts prompts;
  Watched watched{prompts, driver};
  std::unique_ptr<DatabaseEngine> engine;
  std::unique_ptr<Library> library;
  std::unique_ptr<Glob> glob;

 private:
  std::string previousFolder_;
};

}  // namespace voxa::test
