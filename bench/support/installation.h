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

/// A driver that does nothing, unless a benchmark gives it something to do, and says that it succeeded.
class IdleDriver : public Driver {
 public:
  std::int16_t call(ComCommandsEnum command, std::int16_t station, std::int16_t controller) override;
  [[nodiscard]] int lastError() const override { return 0; }

  std::function<void(ComCommandsEnum, std::int16_t station, std::int16_t controller)> onCall;
  std::string folder;  ///< of the result files
  /// The status line of what it finds when it is asked for the dates of a station.
  std::string statuses = "XXXXXXXXXXXXXXXX";
};

/// An installation in a folder of its own below the current one, which is the current one as long as the
/// object lives. It starts with the message store, and no other database.
class Installation {
 public:
  Installation();
  ~Installation();
  Installation(const Installation&) = delete;
  Installation& operator=(const Installation&) = delete;

  /// A new context over the same folder, as a program has that starts now; no database is open.
  void restart();
  /// The main database with its default rows; fails when it exists.
  void createDatabase();
  /// Cardholders with the numbers 1 to `count`, named "Card 1" and so on, their flags not set.
  void addCardholders(int count);
  /// Readers 1 to 64, "Reader 1" and so on, at the four positions of each of the 16 controllers of station 1,
  /// all of which answer the driver.
  void addReaders();
  /// A copy of the main database as it is now, beside it; its path.
  [[nodiscard]] std::string copyDatabase() const;

  [[nodiscard]] Database& db() const;
  [[nodiscard]] DatabaseEngine& engine() const { return *engine_; }
  [[nodiscard]] Library& library() const { return *library_; }
  [[nodiscard]] const std::string& databasePath() const { return databasePath_; }
  [[nodiscard]] const std::string& folder() const { return folder_; }
  IdleDriver& driver() { return driver_; }
  /// Raises what the library told its user, if anything: no measured work has a reason to.
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
