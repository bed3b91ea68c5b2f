#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "app/open_installation.h"
#include "output/caller_prompts.h"
#include "platform/text.h"
#include "work/report.h"

namespace voxa::cli {

/// What the options before the command say.
struct Settings {
  Opening opening;
  std::vector<std::string> answers;  ///< buttons for boxes that ask: abort, retry, ignore, yes, no, cancel
  bool yes = false;                  ///< Yes to every question, Ignore where controllers do not answer

  /// Whether questions are answered with Yes before they are asked.
  [[nodiscard]] bool answersYes() const {
    return yes || std::any_of(answers.begin(), answers.end(),
                              [](const std::string& name) { return equalNoCase(name, "yes"); });
  }
};

/// One call of the program: its settings, the person at the terminal, and the installation it works on.
class Session {
 public:
  Settings settings;

  // Each of the three opens the installation that the settings name, as OpenInstallation has it.
  void open();
  void openForSending();
  void create();
  /// Opens as much as a statement on a database file needs. named: the file as the caller names it, "" for
  /// the main database. Returns its full path.
  [[nodiscard]] std::string openForStatement(const std::string& named, bool write);
  void leave() { installation_.leave(); }

  // Once it is open or created:
  [[nodiscard]] Library& library() { return installation_.library(); }
  [[nodiscard]] QDB& qdb() { return library().QDB(); }
  [[nodiscard]] Com& com() { return library().Com(); }
  [[nodiscard]] Strings& strings() { return library().Strings(); }
  [[nodiscard]] const Clock& clock() const { return installation_.clock(); }
  [[nodiscard]] const std::string& folder() const { return installation_.folder(); }

  /// Shows what the work on the installation tells, for a person and for the exit status.
  void show(const std::vector<Notice>& notices);
  void show(const Report& report);
  /// Whether a failure was shown, or the opening left something undone, which has been shown.
  [[nodiscard]] bool failed() const { return failed_; }
  /// Something is left for a person, which the command shows itself.
  void leaveToPerson() { left_ = true; }
  /// Whether something that is left for a person was shown.
  [[nodiscard]] bool left() const { return left_; }
  [[nodiscard]] CallerPrompts& prompts() { return prompts_; }
  [[nodiscard]] std::string callersFile(const std::string& path) const {
    return installation_.callersFile(path);
  }
  /// The same of a folder, without what a shell leaves at its end, or dots in it.
  [[nodiscard]] std::string callersFolder(const std::string& path) const;
  /// Tells the person why a command failed (inside a catch block).
  void explainFailure(const std::string& command);

 private:
  void prepare();
  void opened();

  bool failed_ = false;
  bool left_ = false;
  CallerPrompts prompts_;
  OpenInstallation installation_{prompts_};
};

}  // namespace voxa::cli
