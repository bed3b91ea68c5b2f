// voxa read: the transactions of the controllers on their way into the journal.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <iostream>
#include <mutex>
#include <thread>

#include "app/qdb.h"
#include "comm/com.h"
#include "commands.h"
#include "download.h"
#include "files/seq_file.h"
#include "installation.h"
#include "journal/journal.h"
#include "lookup.h"
#include "messages/strings.h"
#include "platform/ui/console_prompts.h"
#include "refusal.h"

namespace voxa::cli {

namespace {

constexpr const char* progressLog = "Log.txt";

struct ReadOptions {
  ComponentChoice component;
  bool all = false;
};

/// An entry of the progress log is its moment, " : " and a text; lines without are more of the one before.
std::string_view entryText(std::string_view line) {
  constexpr std::size_t moment = 19;  // dd/mm/yyyy hh:mm:ss
  constexpr std::string_view separator = " : ";
  if (line.size() < moment + separator.size() || line.substr(moment, separator.size()) != separator)
    return {};
  return line.substr(moment + separator.size());
}

/// "Reading controller 3 of 6" on a terminal, once a run has taken a second. The run is one call, so this
/// looks into its progress log meanwhile, from a thread of its own.
class RunProgress {
 public:
  RunProgress(Installation& installation, std::size_t controllers)
      : begin_(installation.strings().read("LogControllerStart")), controllers_(controllers) {
    if (ConsolePrompts::isTerminal()) thread_ = std::thread([this] { watch(); });
  }
  ~RunProgress() {
    {
      const std::lock_guard lock(mutex_);
      over_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable()) thread_.join();
  }
  RunProgress(const RunProgress&) = delete;
  RunProgress& operator=(const RunProgress&) = delete;

 private:
  void watch() {
    std::unique_lock lock(mutex_);
    bool shown = false;
    while (!wake_.wait_for(lock, std::chrono::seconds(1), [this] { return over_; })) {
      std::cerr << "\rReading controller " << begun() << " of " << controllers_ << std::flush;
      shown = true;
    }
    if (shown) std::cerr << '\n';
  }
  [[nodiscard]] std::size_t begun() const {
    std::size_t count = 0;
    std::ifstream log(progressLog);
    for (std::string line; std::getline(log, line);) {
      if (entryText(line).starts_with(begin_)) ++count;
    }
    return count;
  }

  std::string begin_;
  std::size_t controllers_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool over_ = false;
  std::thread thread_;
};

std::int32_t journalRows(Installation& installation) {
  const auto journal = installation.qdb().Journal().DB();
  if (!journal) throw Refusal("the journal of " + installation.folder() + " (Journal.MDB) cannot be opened");
  return journal->openRecordset("select count(*) as Transactions from Journal")
      ->get("Transactions")
      .toInt32();
}

/// What the progress log says about controllers that failed.
std::string failuresOfRun(Installation& installation) {
  Strings& strings = installation.strings();
  const std::string begin = strings.read("LogControllerStart");
  std::vector<std::string> failures;
  for (const char* mnemonic :
       {"msgCantTransferTransac", "msgCantDeleteBuf", "msgUICantConnect", "msgUICantDisconnect"}) {
    failures.push_back(strings.read(mnemonic));
  }
  SeqFile log(installation.library());
  log.Name(progressLog);
  log.fopen("r");
  std::string told;
  std::string controller;
  bool failed = false;
  while (!log.fEOF()) {
    const std::string line = log.flineInput();
    const std::string_view entry = entryText(line);
    if (entry.empty()) {
      if (failed) told += "\n    " + line;
      continue;
    }
    if (entry.starts_with(begin)) controller = entry.substr(begin.size());
    failed = std::any_of(failures.begin(), failures.end(),
                         [&](const std::string& text) { return entry.starts_with(text); });
    if (failed) told.append("\n ").append(controller).append(": ").append(entry);
  }
  return told;
}

std::size_t controllerCount(const Installation& installation) {
  return installation
      .rows("select distinct StationId, ControllerAddress from Readers where ControllerAddress is not null")
      ->recordCount();
}

void readAll(Installation& installation) {
  // A controller that did not answer at the last test is passed over when it is to clear what was read.
  installation.com().UpdateComStatus();
  (void)installation.com().popErrorList();
  std::int16_t status = 0;
  {
    const RunProgress progress(installation, controllerCount(installation));
    status = installation.qdb().Journal().readAuto();
  }
  if (status == 0 || installation.prompts().failuresShown() > 0) return;
  throw Refusal("not every controller was read and cleared:" + failuresOfRun(installation));
}

void readComponent(Installation& installation, const Component& component) {
  const int failures = installation.prompts().failuresShown();
  const std::int16_t status = installation.qdb().Journal().readTransactions(component.type, component.name);
  if (installation.prompts().failuresShown() != failures) return;
  if (status != 0) {
    throw Refusal("nothing was read: no controller answers, or reading was aborted" +
                  installation.com().popErrorList());
  }
  std::string silent;
  for (const std::string& name : silentControllers(installation, component)) silent += "\n  " + name;
  if (!silent.empty()) throw Refusal("these controllers did not answer and were not read:" + silent);
}

void read(Installation& installation, const ReadOptions& options) {
  installation.openForSending();
  const bool all = options.component.station.empty() && options.component.reader.empty();
  const Component component = all ? Component{} : chosen(installation, options.component);
  const std::int32_t before = journalRows(installation);
  const auto tell = [&] {
    std::cout << journalRows(installation) - before << " transactions added to the journal\n";
  };
  try {
    if (all) {
      readAll(installation);
    } else {
      readComponent(installation, component);
    }
  } catch (...) {
    tell();
    throw;
  }
  tell();
}

}  // namespace

void addReadCommand(CLI::App& app, Installation& installation) {
  auto* command =
      app.add_subcommand("read", "Read the controllers' transactions into the journal and clear them");
  auto options = std::make_shared<ReadOptions>();
  addComponentOptions(*command, options->component);
  command->add_flag("--all", options->all, "Every controller of every station, as without an option")
      ->excludes("--station")
      ->excludes("--reader");
  command->footer(
      "Of all controllers each is read on its own, those behind a telephone line are dialled, and Log.txt "
      "says\nwhat happened.\nExample:\n  voxa read --station Annex");
  command->callback([&installation, options] { read(installation, *options); });
}

}  // namespace voxa::cli
