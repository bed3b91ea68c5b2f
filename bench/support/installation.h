#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/glob.h"
#include "app/library.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/driver/driver.h"
#include "platform/ui/scripted_prompts.h"

namespace voxa::bench {

/// A driver that says that it succeeded, and does nothing unless a benchmark gives it something to do.
class IdleDriver : public Driver {
 public:
  std::int16_t call(ComCommandsEnum command, std::int16_t station, std::int16_t controller) override;
  [[nodiscard]] int lastError() const override { return 0; }

  std::function<void(ComCommandsEnum, std::int16_t station, std::int16_t controller)> onCall;
  std::string folder;  ///< where the result files are
  /// The status line of the result file when the dates of a station are asked for.
  std::string statuses = "XXXXXXXXXXXXXXXX";
};

/// An installation in a folder of its own below the current one. The folder is the current one for as long as
/// the object lives. At first there is only the message store.
class Installation {
 public:
  Installation();
  ~Installation();
  Installation(const Installation&) = delete;
  Installation& operator=(const Installation&) = delete;

  /// Makes a new context over the same folder, as a program has that starts now. No database is open.
  void restart();
  /// Makes the main database with its default rows. Fails when it exists.
  void createDatabase();
  /// Adds cardholders with the numbers 1 to `count`, named "Card 1" and so on. Their flags are not set.
  void addCardholders(int count);
  /// Adds readers 1 to 64, "Reader 1" and so on, at the four positions of each of the 16 controllers of
  /// station 1. All controllers answer the driver.
  void addReaders();
  /// A group "Staff" of all cardholders, who may pass all doors of the controllers up to that address.
  void addStaff(int controllers);
  /// Adds lines 2 to `count`, each with the readers of station 1, which all of "Staff" may pass.
  void addLines(int count);
  /// Marks all seven parts of all cards to be sent.
  static constexpr const char* markCards =
      "update Cardholders set CardCodeFlagD = -1, AccessGroupIdFlagD = -1, ValidatedFlagD = -1, "
      "PINCodeFlagD = -1, SupervisorFlagD = -1, ValidationDateFlagD = -1, CreditFlagD = -1";
  /// Copies the main database as it is now to a file beside it; returns the path.
  [[nodiscard]] std::string copyDatabase() const;

  [[nodiscard]] Database& db() const;
  [[nodiscard]] DatabaseEngine& engine() const { return *engine_; }
  [[nodiscard]] Library& library() const { return *library_; }
  [[nodiscard]] const std::string& databasePath() const { return databasePath_; }
  [[nodiscard]] const std::string& folder() const { return folder_; }
  IdleDriver& driver() { return driver_; }
  /// Raises what the library told its user, if anything. No measured work has a reason to tell something.
  void requireSilence() const;

 private:
  std::string previousFolder_;
  std::string folder_;
  std::string databasePath_;
  SystemClock clock_;
  IdleDriver driver_;
  ScriptedPrompts prompts_;
  std::unique_ptr<DatabaseEngine> engine_;
  std::unique_ptr<Library> library_;
  std::unique_ptr<Glob> glob_;
};

/// The bytes of a file; none when it cannot be read.
[[nodiscard]] std::string contents(const std::string& file);

}  // namespace voxa::bench
