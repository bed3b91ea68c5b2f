// Programs, holidays and badge formats. Groups and cards are in download_cards.cpp.

#include "work/download.h"

#include <map>
#include <set>

#include "access/badge_format.h"
#include "comm/com.h"
#include "platform/database/database.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"
#include "work/carry_out.h"
#include "work/download_steps.h"
#include "work/installation.h"
#include "work/line_test.h"
#include "work/look_up.h"
#include "work/refusal.h"

namespace voxa {

namespace {

/// What tells the kinds apart whose rows have one mark, which their sending clears.
struct Kind {
  const char* rows;
  const char* flag;
  std::string (*key)(const Recordset& row);
  std::int16_t (*sendRow)(Installation& to, const Recordset& row, const Component& component,
                          const Tell& teller);
  std::int16_t (*sendAll)(Installation& to, const Component& component, const Tell& teller);
};

const Kind daily = {
    "select * from DailyPrograms where Id <> 0 order by Id", "DailyProgramFlagD",
    [](const Recordset& row) { return row.get("Id").toText(); },
    [](Installation& to, const Recordset& row, const Component& component, const Tell& teller) {
      return to.DailyPrograms().send(row.get("Id").toInt16(), component, DLDefault, teller);
    },
    [](Installation& to, const Component& component, const Tell& teller) {
      return to.DailyPrograms().sendAll(component, teller);
    }};

const Kind weekly = {
    "select * from WeeklyPrograms where ProgNum <> 0 order by ProgType, ProgNum", "WeeklyProgramFlagD",
    [](const Recordset& row) { return row.get("ProgType").toText() + row.get("ProgNum").toText(); },
    [](Installation& to, const Recordset& row, const Component& component, const Tell& teller) {
      return to.WeeklyPrograms().send(row.get("ProgType").toText(), row.get("ProgNum").toInt16(), component,
                                      DLDefault, teller);
    },
    [](Installation& to, const Component& component, const Tell& teller) {
      return to.WeeklyPrograms().sendAll(component, "", teller);
    }};

const Kind holidays = {
    "select * from Holidays order by Id", "HolidayFlagD",
    [](const Recordset& row) { return row.get("Id").toText(); },
    [](Installation& to, const Recordset& row, const Component& component, const Tell& teller) {
      return to.Holidays().send(row.get("Id").toInt16(), component, DLDefault, teller);
    },
    [](Installation& to, const Component& component, const Tell& teller) {
      return to.Holidays().sendAll(component, teller);
    }};

bool marked(const Recordset& row, const Kind& kind) {
  return row.get(kind.flag).toBool();
}

/// Looks at a row behind the sending, and marks it again for the controllers that were passed over.
Outcome settle(Recordset& row, const Kind& kind, bool failed, bool forSilent) {
  if (failed || marked(row, kind)) return Outcome::failed;
  if (!forSilent) return Outcome::done;
  row.edit();
  row.set(kind.flag, true);
  row.update();
  return Outcome::done;
}

Report downloadRows(Installation& installation, const Kind& kind, const DownloadTarget& target,
                    Observer* observer) {
  Report report;
  std::set<std::string> chosen;
  Database& database = installation.database();
  for (auto rows = database.openRecordset(kind.rows); !rows->eof(); rows->moveNext()) {
    if (target.full || marked(*rows, kind)) {
      chosen.insert(kind.key(*rows));
    } else {
      report.rows.push_back({rows->get("Name").toText(), Outcome::unchanged});
    }
  }
  std::map<std::string, std::vector<Notice>> notices;  // of the rows that failed
  std::set<std::string> failed;
  if (target.full) {
    if (kind.sendAll(installation, target.component, into(report.notices)) != 0 && report.notices.empty()) {
      report.broken = true;
    }
  } else {
    std::size_t sent = 0;
    for (auto rows = database.openRecordset(kind.rows); !rows->eof(); rows->moveNext()) {
      const std::string key = kind.key(*rows);
      if (!chosen.contains(key)) continue;
      if (kind.sendRow(installation, *rows, target.component, into(notices[key])) != 0) failed.insert(key);
      if (observer != nullptr) observer->progress("Sending", ++sent, chosen.size());
    }
  }
  for (auto rows = database.openRecordset(kind.rows); !rows->eof(); rows->moveNext()) {
    const std::string key = kind.key(*rows);
    if (!chosen.contains(key)) continue;
    const Outcome outcome = settle(*rows, kind, failed.contains(key), !target.silent.empty());
    report.rows.push_back({rows->get("Name").toText(), outcome, std::move(notices[key])});
  }
  return report;
}

Report downloadKind(Installation& installation, DownloadKind kind, const DownloadTarget& target,
                    Observer* observer) {
  switch (kind) {
    case DownloadKind::dailyPrograms:
      return downloadRows(installation, daily, target, observer);
    case DownloadKind::weeklyPrograms:
      return downloadRows(installation, weekly, target, observer);
    case DownloadKind::holidays:
      return downloadRows(installation, holidays, target, observer);
    case DownloadKind::groups:
      return downloadGroups(installation, target);
    case DownloadKind::cards:
      break;
  }
  return downloadCards(installation, target);
}

}  // namespace

Report download(Installation& installation, DownloadKind kind, const DownloadTarget& target,
                Observer* observer) {
  if (kind == DownloadKind::dailyPrograms) requireIntervals(installation);
  passOver(installation, target.silent);
  Report report = downloadKind(installation, kind, target, observer);
  report.controllers = target.silent;
  return report;
}

Report downloadBadgeFormat(Installation& installation, const std::string& format,
                           const DownloadTarget& target) {
  const auto row = badgeFormatNamed(installation, format);
  const bool wanted = target.full || row->get("BadgeFormatFlagD").toBool();
  passOver(installation, target.silent);
  Report report;
  report.controllers = target.silent;
  std::set<ControllerPlace> served;
  const auto readers = installation.database().openRecordset(
      "select Readers.Name as Reader, Stations.Name as Station, StationId, ControllerAddress, Position, "
      "ControllerType from Readers inner join Stations on Readers.StationId = Stations.Id "
      "where Stations.Active = true order by StationId, ControllerAddress, Position");
  for (; !readers->eof(); readers->moveNext()) {
    const std::string name = readers->get("Reader").toText();
    const Component& to = target.component;
    if (to.type == CTReader && name != to.name) continue;
    if (to.type == CTStation && readers->get("Station").toText() != to.name) continue;
    const ControllerPlace place{readers->get("StationId").toInt16(),
                                readers->get("ControllerAddress").toInt16()};
    const bool vrmd1 = readers->get("ControllerType") == Value("VRMD1");
    if (!vrmd1 && !served.insert(place).second) continue;  // one format for all its readers
    if (wanted && !installation.Com().TestSend(place.station, place.address)) continue;
    Report::Row& told = report.rows.emplace_back(Report::Row{name, Outcome::unchanged});
    if (!wanted) continue;
    const std::int16_t status = installation.BadgeFormat().send(
        row->get("Id").toInt16(), readers->get("Position").toInt16(), vrmd1, {CTReader, name},
        target.full ? DLFull : DLDefault, into(told.notices));
    told.outcome = status == 0 ? Outcome::done : Outcome::failed;
  }
  if (report.rows.empty() && target.silent.empty()) {
    throw Refusal("there is no reader of an active station to send it to");
  }
  return report;
}

}  // namespace voxa
