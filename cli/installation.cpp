#include "installation.h"

#include <filesystem>
#include <iostream>
#include <system_error>

#include "access/card_block.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "engines/sqlite/engine.h"
#include "host_texts.h"
#include "installation_files.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/files.h"
#include "platform/text.h"
#include "refusal.h"

namespace voxa::cli {

namespace {

constexpr const char* mainDatabase = "KRV.mdb";
constexpr const char* messageStore = "I18N.MDB";

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

Installation::Installation() : callersFolder_(files::currentFolder()), engine_(makeSqliteEngine(clock_)) {}

Installation::~Installation() = default;

std::unique_ptr<Recordset> Installation::rows(const std::string& sql) const {
  return glob_->QDB().database().openRecordset(sql);
}

std::string Installation::callersFile(const std::string& path) const {
  return (std::filesystem::path(callersFolder_) / path).string();
}

void Installation::enterFolder() {
  std::error_code failure;
  std::filesystem::current_path(callersFile(settings.folder), failure);
  if (failure) throw Refusal("the folder " + settings.folder + " cannot be entered: " + failure.message());
  folder_ = files::currentFolder();
  if (const std::string fault = files::folderFault(folder_, settings.trustGroup); !fault.empty()) {
    throw Refusal(fault);
  }
}

void Installation::start() {
  for (const std::string& name : settings.answers) prompts_.assume(answerNamed(name));
  if (settings.yes) {
    prompts_.assume(Answer::yes);
    prompts_.assume(Answer::ignore);
  }
  library_ = std::make_unique<Library>(Library::Seams{*engine_, driver_, prompts_, clock_});
  glob_ = std::make_unique<Glob>(*library_);
  prompts_.protect([this](const std::string& path) { return isFileOfInstallation(folder_, path); });
  com().inhibitCom = settings.inhibit;
  com().writeLog = !settings.noLog;
  com().pDailyPrograms4Zones = settings.fourZones ? 1 : 0;
}

void Installation::requireInstallation() const {
  if (!files::exists(mainDatabase)) {
    throw Refusal(folder_ + " is no installation (no " + mainDatabase + "): create one with 'voxa init'");
  }
}

void Installation::openForSending() {
  enterFolder();
  requireInstallation();
  lock_ = std::make_unique<InstallationLock>();
  open();
  eraseUnfinishedBlocks(*library_);
}

void Installation::open() {
  enterFolder();
  requireInstallation();
  start();
  if (!strings().isOpen()) {
    std::cerr << "voxa: the message texts of " << folder_ << " (I18N.MDB) cannot be read\n";
  }
  glob_->Initialize(folder_ + "\\" + mainDatabase, folder_ + "\\S001.ini", folder_ + "\\COM.LOG", folder_);
  if (!qdb().DB()) {
    throw Refusal(
        "the installation in " + folder_ + " cannot be opened: its " + mainDatabase +
        " is damaged, or not yours to read; a copy made with 'voxa db save' can be put in its place");
  }
  prompts_.takeForLeftover(strings().read("msgDownloadToUnactive"));
  prompts_.forgetFailures();  // a journal that cannot be opened has been told, and most commands need none
}

void Installation::fillCatalogue() {
  if (!strings().isOpen() && strings().createDB() != 0) {
    throw Refusal("the message texts (I18N.MDB) cannot be created in " + folder_);
  }
  glob_->insertStrings();
  library_->showLater([&] {
    Transaction transaction(*engine_, strings().database());
    if (insertHostTexts(strings()) == 0) transaction.commit();
  });
}

void Installation::removeBegun(const std::string& name) const {
  if (!files::exists(name)) return;
  try {
    const auto database = engine_->open(name);
    const bool begun = database->tableNames().empty();
    database->close();
    if (begun) files::remove(name);
  } catch (const Error&) {
    // Then it is something else, and whoever needs its place says so.
  }
}

void Installation::create() {
  try {
    files::makeFolders(callersFile(settings.folder));
  } catch (const Error& failure) {
    throw Refusal("the folder " + settings.folder + " cannot be made: " + failure.description());
  }
  enterFolder();
  lock_ = std::make_unique<InstallationLock>();
  for (const char* name : {messageStore, Journal::dbName, mainDatabase}) removeBegun(name);
  if (files::exists(mainDatabase)) throw Refusal(folder_ + " holds an installation already");
  start();
  fillCatalogue();
  com().AppDB = folder_ + "\\" + mainDatabase;
  com().IniFile = folder_ + "\\S001.ini";
  com().logFileName = folder_ + "\\COM.LOG";
  com().Chemin = folder_;
  const auto require = [this](bool done) {
    if (done && prompts_.failuresShown() == 0) return;
    throw Refusal("the installation in " + folder_ + " is not complete");
  };
  Journal& journal = qdb().Journal();
  require(files::exists(Journal::dbName) || journal.createDB() == 0);
  if (journal.DB()) journal.DB()->close();  // an open one would be put aside for a new one
  // The main database last, as what says that there is an installation: a killed 'init' can be repeated.
  require(qdb().createDB() == 0 && journal.openDB() == 0);
}

void Installation::leave() {
  glob_.reset();
  library_.reset();
  for (const auto& database : engine_->databases()) database->close();
  lock_.reset();
  std::filesystem::current_path(callersFolder_);
}

void Installation::explainFailure(const std::string& command) {
  const auto say = [&](const std::string& sentence) { std::cerr << command << ": " << sentence << '\n'; };
  try {
    throw;
  } catch (const Refusal& refusal) {
    if (refusal.mnemonic().empty() || !glob_) {
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
    } else if (glob_) {
      strings().display("msgUnexpecErr", command, error);
    } else {
      say("Error " + std::to_string(error.number) + ": " + error.description);
    }
  }
}

}  // namespace voxa::cli
