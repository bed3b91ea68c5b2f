// voxa download: programs on their way to the controllers.

#include "download.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <iostream>
#include <set>

#include "app/qdb.h"
#include "comm/com.h"
#include "commands.h"
#include "installation.h"
#include "lookup.h"
#include "programs/daily_program.h"
#include "programs/weekly_program.h"
#include "refusal.h"

namespace voxa::cli {

namespace {

/// What tells the two kinds of programs apart. The built-in programs 0 are never sent.
struct Kind {
  const char* rows;
  const char* flag;
  std::string (*key)(const Recordset& row);
  std::int16_t (*sendRow)(QDB& qdb, const Recordset& row, const Component& to, bool* tested);
  std::int16_t (*sendAll)(QDB& qdb, const Component& to, bool* tested);
};

const Kind daily = {"select * from DailyPrograms where Id <> 0 order by Id", "DailyProgramFlagD",
                    [](const Recordset& row) { return row.get("Id").toText(); },
                    [](QDB& qdb, const Recordset& row, const Component& to, bool* tested) {
                      return qdb.DailyPrograms().download(row.get("Id").toInt16(), to.type, to.name,
                                                          DLDefault, tested);
                    },
                    [](QDB& qdb, const Component& to, bool* tested) {
                      return qdb.DailyPrograms().generalDownload(to.type, to.name, tested);
                    }};

const Kind weekly = {
    "select * from WeeklyPrograms where ProgNum <> 0 order by ProgType, ProgNum", "WeeklyProgramFlagD",
    [](const Recordset& row) { return row.get("ProgType").toText() + row.get("ProgNum").toText(); },
    [](QDB& qdb, const Recordset& row, const Component& to, bool* tested) {
      return qdb.WeeklyPrograms().download(row.get("ProgType").toText(), row.get("ProgNum").toInt16(),
                                           to.type, to.name, DLDefault, tested);
    },
    [](QDB& qdb, const Component& to, bool* tested) {
      return qdb.WeeklyPrograms().generalDownload(to.type, to.name, "", tested);
    }};

bool marked(const Recordset& row, const Kind& kind) {
  return row.get(kind.flag).toBool();
}

/// "Sending 12 of 31" on a terminal, once the work has taken a second.
class Progress {
 public:
  explicit Progress(std::size_t total) : total_(total) {}
  ~Progress() {
    if (shown_) std::cerr << '\n';
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  void step() {
    ++done_;
    if (!terminal_ || std::chrono::steady_clock::now() - start_ < std::chrono::seconds(1)) return;
    std::cerr << "\rSending " << done_ << " of " << total_ << std::flush;
    shown_ = true;
  }

 private:
  std::size_t total_;
  std::size_t done_ = 0;
  bool terminal_ = ConsolePrompts::isTerminal();
  bool shown_ = false;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace

bool Download::ready() {
  const int failures = installation_.prompts().failuresShown();
  const bool goOn = installation_.com().readyToSend(component_.type, component_.name, nullptr);
  if (installation_.prompts().failuresShown() != failures) {
    throw Refusal("the controllers cannot be tested: nothing was sent");
  }
  installation_.com().popErrorList();  // the question has named the controllers
  leftOut_.clear();
  const auto rows = installation_.rows("select StationID, CtrAddr from ComStatus where Status = -1");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t station = rows->get("StationID").toInt16();
    const std::int16_t address = rows->get("CtrAddr").toInt16();
    bool concerned = component_.type == CTActiveStations;
    if (component_.type == CTStation) {
      concerned = stationNamed(installation_, component_.name)->get("Id").toInt16() == station;
    }
    if (component_.type == CTReader) {
      const auto reader = readerNamed(installation_, component_.name);
      concerned = reader->get("StationId").toInt16() == station &&
                  reader->get("ControllerAddress").toInt16() == address;
    }
    if (concerned) leftOut_.push_back(installation_.com().getName(station, address));
  }
  return goOn;
}

DownloadCount Download::send(Programs programs, bool full) {
  const Kind& kind = programs == Programs::daily ? daily : weekly;
  DownloadCount count;
  std::set<std::string> chosenRows;
  for (auto rows = installation_.rows(kind.rows); !rows->eof(); rows->moveNext()) {
    if (full || marked(*rows, kind)) {
      chosenRows.insert(kind.key(*rows));
    } else {
      ++count.unchanged;
    }
  }
  std::set<std::string> failedRows;
  bool tested = true;
  if (full) {
    kind.sendAll(installation_.qdb(), component_, &tested);
  } else {
    Progress progress(chosenRows.size());
    for (auto rows = installation_.rows(kind.rows); !rows->eof(); rows->moveNext()) {
      if (!chosenRows.contains(kind.key(*rows))) continue;
      if (kind.sendRow(installation_.qdb(), *rows, component_, &tested) != 0) {
        failedRows.insert(kind.key(*rows));
      }
      progress.step();
    }
  }
  for (auto rows = installation_.rows(kind.rows); !rows->eof(); rows->moveNext()) {
    if (!chosenRows.contains(kind.key(*rows))) continue;
    if (failedRows.contains(kind.key(*rows)) || marked(*rows, kind)) {
      ++count.failed;
      continue;
    }
    ++count.sent;
    if (leftOut_.empty()) continue;
    rows->edit();
    rows->set(kind.flag, true);
    rows->update();
  }
  return count;
}

namespace {

struct DownloadOptions {
  ComponentChoice component;
  bool full = false;
};

void download(Installation& installation, const std::vector<Programs>& kinds,
              const DownloadOptions& options) {
  installation.openForSending();
  Download download(installation, chosen(installation, options.component));
  if (!download.ready()) {
    throw Refusal("aborted: nothing was sent");
  }
  bool failed = false;
  for (const Programs programs : kinds) {
    const DownloadCount count = download.send(programs, options.full);
    std::cout << (programs == Programs::daily ? "Daily" : "Weekly") << " programs: " << count.sent
              << " sent, " << count.unchanged << " unchanged, " << count.failed << " failed\n";
    failed = failed || count.failed > 0;
  }
  if (!download.leftOut().empty()) {
    std::string names;
    for (const std::string& name : download.leftOut()) names += "\n  " + name;
    throw Refusal("these controllers did not answer, and what was sent stays marked for them:" + names);
  }
  if (failed) throw Refusal("not everything was sent: what failed stays marked");
}

}  // namespace

void addDownloadCommands(CLI::App& app, Installation& installation) {
  auto* group = app.add_subcommand("download", "Send programs to the controllers")->require_subcommand(1);
  const auto add = [&](const std::string& name, const char* what, std::vector<Programs> kinds) {
    auto* command = group->add_subcommand(name, what);
    auto options = std::make_shared<DownloadOptions>();
    addComponentOptions(*command, options->component);
    command->add_flag("--full", options->full, "Also those that the controllers have");
    command->footer("A program counts as sent once one component has taken it.\nExample:\n  voxa download " +
                    name + " --station Local --full");
    command->callback(
        [&installation, options, kinds = std::move(kinds)] { download(installation, kinds, *options); });
  };
  add("daily", "Send the daily programs that were changed", {Programs::daily});
  add("weekly", "Send the weekly programs that were changed", {Programs::weekly});
  add("all", "Send the daily, then the weekly programs that were changed",
      {Programs::daily, Programs::weekly});
}

}  // namespace voxa::cli
