#pragma once

#include <functional>
#include <memory>

#include "app/glob.h"
#include "app/library.h"
#include "platform/clock.h"
#include "platform/driver/library_driver.h"
#include "platform/ui/prompts.h"
#include "simulation/world.h"

namespace voxa::simulation {

/// A process at work in the installation: the library over its real parts, with somebody in front of it who
/// presses any button. To be made in a child process.
class Session : private Driver, private Prompts, private Clock {
 public:
  /// answers: which buttons are pressed.
  Session(const World& world, std::uint64_t answers);

  [[nodiscard]] Library& library() const { return *library_; }
  [[nodiscard]] Glob& glob() const { return *glob_; }
  [[nodiscard]] Database& db() const;
  void makeDatabase();
  void open();
  void execute(const std::string& sql) const { db().execute(sql); }

  /// Before and behind each call of the driver, with the number of the call, from 1.
  std::function<void(int)> before, behind;

 private:
  std::int16_t call(ComCommandsEnum command, std::int16_t stationId, std::int16_t controllerAddr) override;
  [[nodiscard]] int lastError() const override { return driver_.lastError(); }
  Answer messageBox(const std::string& prompt, int style, const std::string& title) override;
  std::string chooseFile(const FileDialog& /*dialog*/) override { return ""; }
  void busy(bool /*on*/) override {}
  [[nodiscard]] DateTime now() const override;
  void wait(int /*seconds*/) override {}

  const World& world_;
  Chance chance_;
  LibraryDriver driver_;
  int calls_ = 0;
  std::unique_ptr<DatabaseEngine> engine_;
  std::unique_ptr<Library> library_;
  std::unique_ptr<Glob> glob_;
};

}  // namespace voxa::simulation
