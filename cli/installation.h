#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "app/glob.h"
#include "app/library.h"
#include "caller_prompts.h"
#include "installation_lock.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/driver/library_driver.h"
#include "platform/text.h"

namespace voxa::cli {

/// What the options before the command say.
struct Settings {
  std::string folder = ".";
  std::vector<std::string> answers;  ///< buttons for boxes that ask: abort, retry, ignore, yes, no, cancel
  bool yes = false;                  ///< Yes to every question, Ignore where controllers do not answer
  bool inhibit = false;              ///< no driver is called
  bool noLog = false;
  bool fourZones = false;   ///< four intervals a day instead of two
  bool trustGroup = false;  ///< a folder that its group can write is taken

  /// Whether questions are answered with Yes before they are asked.
  [[nodiscard]] bool answersYes() const {
    return yes || std::any_of(answers.begin(), answers.end(),
                              [](const std::string& name) { return equalNoCase(name, "yes"); });
  }
};

/// One installation folder and the library over it. Its folder becomes the current folder of the process,
/// where the library keeps its files.
class Installation {
 public:
  Installation();
  ~Installation();
  Installation(const Installation&) = delete;
  Installation& operator=(const Installation&) = delete;

  Settings settings;

  /// Opens the installation in settings.folder; a Refusal when there is none.
  void open();
  /// The same for commands that use the lines or the files that the driver reads: one at a time, the next one
  /// waits; a Refusal when it waits too long.
  void openForSending();
  /// Creates one there, making the folder when it is missing; a Refusal when there is one already or when it
  /// could not be completed.
  void create();

  /// Closes its files and goes back to the folder of the caller.
  void leave();

  // Once it is open or created:
  [[nodiscard]] QDB& qdb() { return glob_->QDB(); }
  [[nodiscard]] Com& com() { return glob_->Com(); }
  [[nodiscard]] Strings& strings() { return glob_->Strings(); }
  [[nodiscard]] Library& library() { return *library_; }
  [[nodiscard]] const Clock& clock() const { return clock_; }
  [[nodiscard]] std::unique_ptr<Recordset> rows(const std::string& sql) const;
  [[nodiscard]] const std::string& folder() const { return folder_; }  ///< its full path

  [[nodiscard]] CallerPrompts& prompts() { return prompts_; }
  /// A file named on the command line: relative ones start where the command was called.
  [[nodiscard]] std::string callersFile(const std::string& path) const;
  /// Tells the person why a command failed (inside a catch block).
  void explainFailure(const std::string& command);

 private:
  void enterFolder();
  void requireInstallation() const;
  void start();
  void fillCatalogue();
  // A database without a table is what an 'init' that was killed had come to.
  void removeBegun(const std::string& name) const;

  std::unique_ptr<InstallationLock> lock_;  // let go last
  std::string callersFolder_;
  std::string folder_;
  SystemClock clock_;
  LibraryDriver driver_;
  CallerPrompts prompts_;
  std::unique_ptr<DatabaseEngine> engine_;
  std::unique_ptr<Library> library_;
  std::unique_ptr<Glob> glob_;
};

}  // namespace voxa::cli
