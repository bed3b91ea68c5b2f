// voxa download: what was changed, on its way to the controllers. Groups and cards are in download_cards.cpp.

#include "download.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <set>

#include "access/badge_format.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "commands.h"
#include "component.h"
#include "output/progress.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"
#include "session.h"
#include "work/look_up.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

/// What tells the kinds of tables apart that are sent as a whole. The built-in programs 0 are never sent.
struct Kind {
  const char* title;
  const char* rows;
  const char* flag;
  std::string (*key)(const Recordset& row);
  std::int16_t (*sendRow)(QDB& qdb, const Recordset& row, const Component& to, bool* tested);
  std::int16_t (*sendAll)(QDB& qdb, const Component& to, bool* tested);
};

const Kind daily = {"Daily programs",
                    "select * from DailyPrograms where Id <> 0 order by Id",
                    "DailyProgramFlagD",
                    [](const Recordset& row) { return row.get("Id").toText(); },
                    [](QDB& qdb, const Recordset& row, const Component& to, bool* tested) {
                      return qdb.DailyPrograms().download(row.get("Id").toInt16(), to.type, to.name,
                                                          DLDefault, tested);
                    },
                    [](QDB& qdb, const Component& to, bool* tested) {
                      return qdb.DailyPrograms().generalDownload(to.type, to.name, tested);
                    }};

const Kind weekly = {
    "Weekly programs",
    "select * from WeeklyPrograms where ProgNum <> 0 order by ProgType, ProgNum",
    "WeeklyProgramFlagD",
    [](const Recordset& row) { return row.get("ProgType").toText() + row.get("ProgNum").toText(); },
    [](QDB& qdb, const Recordset& row, const Component& to, bool* tested) {
      return qdb.WeeklyPrograms().download(row.get("ProgType").toText(), row.get("ProgNum").toInt16(),
                                           to.type, to.name, DLDefault, tested);
    },
    [](QDB& qdb, const Component& to, bool* tested) {
      return qdb.WeeklyPrograms().generalDownload(to.type, to.name, "", tested);
    }};

const Kind holidays = {"Holidays",
                       "select * from Holidays order by Id",
                       "HolidayFlagD",
                       [](const Recordset& row) { return row.get("Id").toText(); },
                       [](QDB& qdb, const Recordset& row, const Component& to, bool* /*tested*/) {
                         return qdb.Holidays().download(row.get("Id").toInt16(), to.type, to.name);
                       },
                       [](QDB& qdb, const Component& to, bool* tested) {
                         return qdb.Holidays().generalDownload(to.type, to.name, tested);
                       }};

const Kind& kindOf(Programs programs) {
  switch (programs) {
    case Programs::daily:
      return daily;
    case Programs::weekly:
      return weekly;
    default:
      return holidays;
  }
}

const char* titleOf(Programs programs) {
  if (programs == Programs::groups) return "Access groups";
  if (programs == Programs::cards) return "Cards";
  return kindOf(programs).title;
}

bool marked(const Recordset& row, const Kind& kind) {
  return row.get(kind.flag).toBool();
}

}  // namespace

std::vector<std::string> silentControllers(Session& session, const Component& component) {
  std::vector<std::string> names;
  for (const auto& [station, address] : session.com().notKnownToAnswer(component.type, component.name)) {
    names.push_back(session.com().getName(station, address));
  }
  return names;
}

bool Download::ready() {
  const int failures = session_.prompts().failuresShown();
  const bool goOn = session_.com().readyToSendToKnown(component_.type, component_.name);
  leftOut_ = silentControllers(session_, component_);
  // What broke the test is told; without a controller to leave out for it, it was not one station's fault.
  if (session_.prompts().failuresShown() != failures && leftOut_.empty()) {
    throw Refusal("the controllers cannot be tested: nothing was sent");
  }
  session_.com().popErrorList();  // the question has named the controllers
  return goOn;
}

DownloadCount Download::send(Programs programs, bool full) {
  if (programs == Programs::groups) return sendGroups(full);
  if (programs == Programs::cards) return sendCards(full);
  const Kind& kind = kindOf(programs);
  DownloadCount count;
  std::set<std::string> chosenRows;
  for (auto rows = session_.rows(kind.rows); !rows->eof(); rows->moveNext()) {
    if (full || marked(*rows, kind)) {
      chosenRows.insert(kind.key(*rows));
    } else {
      ++count.unchanged;
    }
  }
  std::set<std::string> failedRows;
  bool tested = true;
  if (full) {
    kind.sendAll(session_.qdb(), component_, &tested);
  } else {
    Progress progress("Sending", chosenRows.size());
    for (auto rows = session_.rows(kind.rows); !rows->eof(); rows->moveNext()) {
      if (!chosenRows.contains(kind.key(*rows))) continue;
      if (kind.sendRow(session_.qdb(), *rows, component_, &tested) != 0) {
        failedRows.insert(kind.key(*rows));
      }
      progress.step();
    }
  }
  for (auto rows = session_.rows(kind.rows); !rows->eof(); rows->moveNext()) {
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

DownloadCount Download::sendBadgeFormat(const Recordset& format, bool full) {
  const bool wanted = full || format.get("BadgeFormatFlagD").toBool();
  DownloadCount count;
  std::set<ControllerPlace> served;
  bool tested = true;
  const auto readers = session_.rows(
      "select Readers.Name as Reader, Stations.Name as Station, StationId, ControllerAddress, Position, "
      "ControllerType from Readers inner join Stations on Readers.StationId = Stations.Id "
      "where Stations.Active = true order by StationId, ControllerAddress, Position");
  for (; !readers->eof(); readers->moveNext()) {
    const std::string name = readers->get("Reader").toText();
    if (component_.type == CTReader && name != component_.name) continue;
    if (component_.type == CTStation && readers->get("Station").toText() != component_.name) continue;
    const std::int16_t station = readers->get("StationId").toInt16();
    const std::int16_t address = readers->get("ControllerAddress").toInt16();
    bool vrmd1 = readers->get("ControllerType") == Value("VRMD1");
    if (!vrmd1 && !served.insert({station, address}).second) continue;  // one format for all its readers
    if (!wanted) {
      ++count.unchanged;
      continue;
    }
    if (!session_.com().TestSend(station, address)) continue;
    std::int16_t position = readers->get("Position").toInt16();
    const std::int16_t status = session_.qdb().BadgeFormat().download(
        format.get("Id").toInt16(), position, vrmd1, CTReader, name, full ? DLFull : DLDefault, &tested);
    ++(status == 0 ? count.sent : count.failed);
  }
  return count;
}

namespace {

struct DownloadOptions {
  ComponentChoice component;
  bool full = false;
  std::string badgeFormat;
};

void print(const std::string& title, const DownloadCount& count) {
  std::cout << title << ": " << count.sent << " sent, " << count.unchanged << " unchanged, " << count.failed
            << " failed";
  if (count.waiting > 0) std::cout << ", " << count.waiting << " waiting for lines that are not in use";
  std::cout << '\n';
}

// sendAll: sends with the download what the command is about; what became of it all.
void download(Session& session, const DownloadOptions& options,
              const std::function<DownloadCount(Download&)>& sendAll) {
  Download download(session, chosen(session, options.component));
  if (!download.ready()) throw Refusal("aborted: nothing was sent");
  const DownloadCount count = sendAll(download);
  std::string silent = eachOnALine(download.leftOut());
  if (!silent.empty())
    silent = "these controllers did not answer, and what was sent stays marked for them:" + silent;
  if (count.failed > 0) {
    throw Refusal("not everything was sent: what failed stays marked" +
                  (silent.empty() ? "" : "; " + silent));
  }
  if (!silent.empty()) throw Leftover(silent);
  if (count.waiting > 0)
    throw Leftover("not everything was sent: what waits for a line that is not in use stays marked");
}

void downloadTables(Session& session, const std::vector<Programs>& kinds, const DownloadOptions& options) {
  session.openForSending();
  download(session, options, [&](Download& to) {
    DownloadCount all;
    for (const Programs programs : kinds) {
      const DownloadCount count = to.send(programs, options.full);
      print(titleOf(programs), count);
      all.failed += count.failed;
      all.waiting += count.waiting;
    }
    return all;
  });
}

void downloadBadgeFormat(Session& session, const DownloadOptions& options) {
  session.openForSending();
  const auto format = badgeFormatNamed(session.library(), options.badgeFormat);
  download(session, options, [&](Download& to) {
    const DownloadCount count = to.sendBadgeFormat(*format, options.full);
    if (count.sent + count.unchanged + count.failed == 0 && to.leftOut().empty()) {
      throw Refusal("there is no reader of an active station to send it to");
    }
    print("Badge format " + format->get("Name").toText(), count);
    return count;
  });
}

}  // namespace

void addDownloadCommands(CLI::App& app, Session& session) {
  auto* group =
      app.add_subcommand("download", "Send what was changed to the controllers")->require_subcommand(1);
  const auto add = [&](const std::string& name, const char* what, std::vector<Programs> kinds) {
    auto* command = group->add_subcommand(name, what);
    auto options = std::make_shared<DownloadOptions>();
    const bool toAll = kinds == std::vector{Programs::groups};
    if (!toAll) addComponentOptions(*command, options->component);
    command->add_flag("--full", options->full, "Also those that the controllers have");
    command->footer(
        "A program or holiday counts as sent once one component has taken it, a card when all its "
        "controllers\n"
        "have; groups and deleted cards go to all controllers only.\nExample:\n  voxa download " +
        name + (toAll ? " --full" : " --station Local --full"));
    command->callback(
        [&session, options, kinds = std::move(kinds)] { downloadTables(session, kinds, *options); });
  };
  add("daily", "Send the daily programs that were changed", {Programs::daily});
  add("weekly", "Send the weekly programs that were changed", {Programs::weekly});
  add("holidays", "Send the holidays that were changed", {Programs::holidays});
  add("groups", "Send the cards of the access groups that were changed", {Programs::groups});
  add("cards", "Send the cards that were changed", {Programs::cards});
  add("all", "Send the programs, the holidays, the access groups and the cards that were changed",
      {Programs::daily, Programs::weekly, Programs::holidays, Programs::groups, Programs::cards});

  auto* badge = group->add_subcommand("badge", "Send a badge format to readers; it stays marked");
  auto options = std::make_shared<DownloadOptions>();
  badge->add_option("FORMAT", options->badgeFormat, "Number or name of the format")->required();
  addComponentOptions(*badge, options->component);
  badge->add_flag("--full", options->full, "Also when it was not changed");
  badge->footer(
      "A VRMD1 is told the format of each of its readers, another controller one format for all.\n"
      "Example:\n  voxa download badge \"Site cards\" --reader Garage");
  badge->callback([&session, options] { downloadBadgeFormat(session, *options); });
}

}  // namespace voxa::cli
