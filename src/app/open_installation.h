#pragma once

#include <memory>
#include <string>

#include "app/glob.h"
#include "app/library.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/driver/library_driver.h"

namespace voxa {

class InstallationLock;

/// How an installation is opened.
struct Opening {
  std::string folder = ".";
  bool trustGroup = false;  ///< a folder that its group can write is taken
  bool inhibit = false;     ///< no driver is called
  bool log = true;          ///< the communication log (COM.LOG) is written
  bool fourZones = false;   ///< the controllers work with four intervals a day instead of two
};

/// One installation folder and the library over it. Its folder becomes the current folder of the process,
/// where the library keeps its files. What cannot be opened or made is a Refusal.
class OpenInstallation {
 public:
  static constexpr const char* mainDatabase = "KRV.mdb";

  /// prompts: must outlive this object.
  explicit OpenInstallation(Prompts& prompts);
  ~OpenInstallation();
  OpenInstallation(const OpenInstallation&) = delete;
  OpenInstallation& operator=(const OpenInstallation&) = delete;

  void open(const Opening& how);
  /// The same for work that uses the lines or the files that the driver reads: one process at a time, the
  /// next one waits some seconds. What a killed batch of cards left on controllers is erased first; whether
  /// that did not fail, as has been shown.
  [[nodiscard]] bool openForSending(const Opening& how);
  /// Creates one, making the folder when it is missing. One that was begun and not completed is begun again.
  void create(const Opening& how);
  /// Only makes its folder the current one. For who reads its main database and opens nothing for work: that
  /// would bring older files forward.
  void enter(const Opening& how);
  /// Closes its files and goes back to the folder of the caller.
  void leave();

  [[nodiscard]] bool isOpen() const { return library_ != nullptr; }
  // Once it is open or created:
  [[nodiscard]] Library& library() { return *library_; }
  [[nodiscard]] const Clock& clock() const { return clock_; }
  [[nodiscard]] const std::string& folder() const { return folder_; }  ///< its full path
  /// A file named by the caller: relative ones start where the process was before it was opened.
  [[nodiscard]] std::string callersFile(const std::string& path) const;
  /// The full path of a database file that the caller names, links followed, since only files themselves are
  /// opened as databases. named: "" for the main database of the folder that was entered.
  [[nodiscard]] std::string databaseFile(const std::string& named) const;
  /// Whether that file belongs to the installation, so that who changes it opens this for sending. One of
  /// another installation is a Refusal.
  [[nodiscard]] bool hasDatabase(const Opening& how, const std::string& named) const;

 private:
  void enterFolder(const Opening& how);
  void requireInstallation() const;
  void start(const Opening& how);
  void openHere(const Opening& how);
  [[nodiscard]] Paths places() const;  // of the files in the folder
  void fillCatalogue();
  [[noreturn]] void refuseIncomplete() const;
  // A database without a table is what a creation that was killed had come to.
  void removeBegun(const std::string& name) const;

  std::unique_ptr<InstallationLock> lock_;  // let go last
  std::string callersFolder_;
  std::string folder_;
  SystemClock clock_;
  LibraryDriver driver_;
  Prompts& prompts_;
  std::unique_ptr<DatabaseEngine> engine_;
  std::unique_ptr<Library> library_;
  std::unique_ptr<Glob> glob_;
};

}  // namespace voxa
