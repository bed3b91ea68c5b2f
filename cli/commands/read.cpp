// voxa read: the transactions of the controllers on their way into the journal.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <mutex>
#include <thread>

#include "app/qdb.h"
#include "comm/com.h"
#include "commands.h"
#include "component.h"
#include "files/seq_file.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/ui/console_prompts.h"
#include "session.h"
#include "work/look_up.h"
#include "work/refusal.h"

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

/// What stands for a mnemonic in the progress log.
std::string logText(Session& session, const char* mnemonic) {
  const std::string text = session.strings().read(mnemonic);
  return text.empty() ? mnemonic : text;
}

/// "Reading controller 3 of 6" on a terminal, once a run has taken a second. The run is one call, so this
/// looks into its progress log meanwhile, from a thread of its own.
class RunProgress {
 public:
  RunProgress(Session& session, std::size_t controllers)
      : begin_(logText(session, "LogControllerStart")), controllers_(controllers) {
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
      std::fprintf(stderr, "\rReading controller %zu of %zu", begun(), controllers_);
      shown = true;
    }
    if (shown) std::fputc('\n', stderr);
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

std::int32_t journalRows(Session& session) {
  const auto journal = session.qdb().Journal().DB();
  if (!journal) throw Refusal("the journal of " + session.folder() + " (Journal.MDB) cannot be opened");
  return journal->openRecordset("select count(*) as Transactions from Journal")
      ->get("Transactions")
      .toInt32();
}

/// What the progress log says about lines and controllers that failed.
std::string failuresOfRun(Session& session) {
  std::vector<std::string> begins;
  for (const char* mnemonic : {"LogControllerStart", "LogConnect", "LogDisconnect"}) {
    begins.push_back(logText(session, mnemonic));
  }
  std::vector<std::string> failures;
  for (const char* mnemonic :
       {"msgCantTransferTransac", "msgCantDeleteBuf", "msgUICantConnect", "msgUICantDisconnect"}) {
    failures.push_back(logText(session, mnemonic));
  }
  SeqFile log(session.library());
  log.Name(progressLog);
  log.fopen("r");
  std::string told;
  std::string about;  // the controller, or the station whose line it is
  bool failed = false;
  while (!log.fEOF()) {
    const std::string line = log.flineInput();
    const std::string_view entry = entryText(line);
    if (entry.empty()) {
      if (failed) told += "\n    " + line;
      continue;
    }
    for (const std::string& begin : begins) {
      if (entry.starts_with(begin)) about = entry.substr(begin.size());
    }
    failed = std::any_of(failures.begin(), failures.end(),
                         [&](const std::string& text) { return entry.starts_with(text); });
    if (failed) told.append("\n ").append(about).append(": ").append(entry);
  }
  return told;
}

/// Of the stations that a run reads: those in use, and those that it dials.
std::size_t controllerCount(Session& session) {
  return session
      .rows(
          "select distinct StationId, ControllerAddress from Readers inner join Stations on "
          "Readers.StationId = Stations.Id where ControllerAddress is not null and "
          "(Active = true or Phone <> '')")
      ->recordCount();
}

void readAll(Session& session) {
  session.com().UpdateComStatus();  // writes the ini files, which a restored database may want otherwise
  (void)session.com().popErrorList();
  std::int16_t status = 0;
  {
    const RunProgress progress(session, controllerCount(session));
    status = session.qdb().Journal().readAuto();
  }
  if (status == 0) return;
  throw Leftover("not every controller was read and cleared:" + failuresOfRun(session));
}

// One by one: read as a whole, a station with a silent controller is never cleared, and the same
// transactions come again and again.
void readStation(Session& session, const std::string& name) {
  const std::int16_t station = stationNamed(session.library(), name)->get("Id").toInt16();
  std::string failures;
  for (const Journal::ControllerRead& read : session.qdb().Journal().readStation(station)) {
    if (read.failure.empty()) continue;
    failures += "\r\n" + session.com().getName(station, read.controller) + ": " + read.failure;
  }
  if (failures.empty()) return;
  for (std::size_t at = 0; (at = failures.find("\r\n", at)) != std::string::npos;)
    failures.replace(at, 2, "\n  ");
  throw Leftover("not every controller was read and cleared:" + failures);
}

void readReader(Session& session, const std::string& name) {
  const int failures = session.prompts().failuresShown();
  const std::int16_t status = session.qdb().Journal().readTransactions(CTReader, name);
  if (status == 0 || session.prompts().failuresShown() != failures) return;
  throw Refusal("nothing was read: the controller does not answer, or reading was aborted" +
                session.com().popErrorList());
}

void read(Session& session, const ReadOptions& options) {
  session.openForSending();
  const bool all = options.component.station.empty() && options.component.reader.empty();
  const Component component = all ? Component{} : chosen(session, options.component);
  const std::int32_t before = journalRows(session);
  const auto tell = [&] {
    std::cout << journalRows(session) - before << " transactions added to the journal\n";
  };
  try {
    if (all) {
      readAll(session);
    } else if (component.type == CTStation) {
      readStation(session, component.name);
    } else {
      readReader(session, component.name);
    }
  } catch (...) {
    tell();
    throw;
  }
  tell();
}

}  // namespace

void addReadCommand(CLI::App& app, Session& session) {
  auto* command =
      app.add_subcommand("read", "Read the controllers' transactions into the journal and clear them");
  auto options = std::make_shared<ReadOptions>();
  addComponentOptions(*command, options->component);
  command->add_flag("--all", options->all, "Every controller of every station, as without an option")
      ->excludes("--station")
      ->excludes("--reader");
  command->footer(
      "Each controller is read on its own. Of all of them, those behind a telephone line are dialled, and "
      "Log.txt says\nwhat happened.\nExample:\n  voxa read --station Annex");
  command->callback([&session, options] { read(session, *options); });
}

}  // namespace voxa::cli
