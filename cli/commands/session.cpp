#include "session.h"

#include <filesystem>
#include <iostream>

#include "app/qdb.h"
#include "comm/com.h"
#include "messages/strings.h"
#include "work/installation_files.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

/// Whether an error is of a file that a person named or whose rights he keeps: nothing unexpected.
bool isOfFiles(int number) {
  constexpr int numbers[] = {err::fileNotFound,     err::fileExists, err::diskFull,
                             err::permissionDenied, err::pathAccess, err::pathNotFound};
  return std::find(std::begin(numbers), std::end(numbers), number) != std::end(numbers);
}

Answer answerNamed(const std::string& name) {
  for (const Answer answer : {Answer::abort, Answer::retry, Answer::ignore, Answer::yes, Answer::no}) {
    if (equalNoCase(name, buttonText(answer))) return answer;
  }
  return Answer::cancel;
}

}  // namespace

void Session::prepare() {
  for (const std::string& name : settings.answers) prompts_.assume(answerNamed(name));
  if (settings.yes) {
    prompts_.assume(Answer::yes);
    prompts_.assume(Answer::ignore);
  }
  prompts_.protect([this](const std::string& path) { return isFileOfInstallation(folder(), path); });
}

void Session::opened() {
  if (!strings().isOpen()) {
    std::cerr << "voxa: the message texts of " << folder() << " (I18N.MDB) cannot be read\n";
  }
}

void Session::open() {
  prepare();
  installation_.open(settings.opening);
  opened();
}

void Session::openForSending() {
  prepare();
  failed_ = !installation_.openForSending(settings.opening);
  opened();
}

void Session::create() {
  prepare();
  installation_.create(settings.opening);
}

std::string Session::openForStatement(const std::string& named, bool write) {
  if (write && installation_.hasDatabase(settings.opening, named)) {
    openForSending();
  } else if (named.empty()) {
    installation_.enter(settings.opening);
  }
  return installation_.databaseFile(named);
}

std::string Session::callersFolder(const std::string& path) const {
  std::string name = std::filesystem::path(callersFile(path)).lexically_normal().string();
  while (name.size() > 1 && name.back() == '/') name.pop_back();
  return name;
}

void Session::show(const std::vector<Notice>& notices) {
  library().show(notices);
  for (const Notice& notice : notices) {
    failed_ = failed_ || notice.kind == Notice::Kind::failure;
    left_ = left_ || notice.kind == Notice::Kind::leftover;
  }
}

void Session::show(const Report& report) {
  show(report.allNotices());
  failed_ = failed_ || report.failed();
}

void Session::explainFailure(const std::string& command) {
  const auto say = [&](const std::string& sentence) { std::cerr << command << ": " << sentence << '\n'; };
  try {
    throw;
  } catch (const Refusal& refusal) {
    if (refusal.mnemonic().empty() || !installation_.isOpen()) {
      say(refusal.what());
    } else {
      strings().display(refusal.mnemonic(), command, Value(refusal.what()));
    }
  } catch (...) {
    const ErrorInfo error = describeCurrentException();
    if (error.number == err::dbLocked) {
      say("another program is changing the database: try again");
    } else if (isOfFiles(error.number)) {
      say(error.description);
    } else if (installation_.isOpen()) {
      strings().display("msgUnexpecErr", command, error);
    } else if (constexpr int firstOfEngine = 3000; error.number >= firstOfEngine) {
      say(error.description);  // a sentence of the database engine
    } else {
      say("Error " + std::to_string(error.number) + ": " + error.description);
    }
  }
}

}  // namespace voxa::cli
