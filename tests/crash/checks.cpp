#include "crash/checks.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "access/card_doors.h"
#include "access/card_record.h"
#include "app/open_installation.h"
#include "crash/plant.h"
#include "engines/sqlite/connection.h"
#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"
#include "platform/ui/scripted_prompts.h"
#include "site/site.h"
#include "work/carry_out.h"

namespace voxa::crash {

namespace {

SystemClock systemClock;

/// What each controller is still to get.
using Planned = std::set<std::tuple<ControllerPlace, ThingKind, std::int32_t>>;

Planned plannedIn(const fs::path& folder) {
  ScriptedPrompts prompts;
  OpenInstallation installation(prompts);
  Opening how;
  how.folder = folder.string();
  installation.open(how);
  Planned planned;
  for (const PlannedController& controller : planAll(installation.library(), {}).controllers) {
    for (const PlanItem& item : controller.plan.items)
      planned.emplace(controller.plan.place, item.kind, item.number);
  }
  installation.leave();
  return planned;
}

/// The main database and the controllers, side by side.
class Sides {
 public:
  explicit Sides(const Plant& plant)
      : planned_(plannedIn(plant.folder)),
        engine_(makeSqliteEngine(systemClock)),
        database(engine_->open((plant.folder / "KRV.mdb").string())) {
    site::Site site(plant.site);
    for (const auto& info : site.list()) controllers.push_back(site.snapshot(info.station, info.address));
  }
  [[nodiscard]] bool isPlanned(const site::Snapshot& there, ThingKind kind, std::int32_t number) const {
    const ControllerPlace place{static_cast<std::int16_t>(there.info.station),
                                static_cast<std::int16_t>(there.info.address)};
    return planned_.contains({place, kind, number});
  }
  [[nodiscard]] std::unique_ptr<Recordset> rows(const std::string& sql) const {
    return database->openRecordset(sql);
  }

 private:
  Planned planned_;
  std::unique_ptr<DatabaseEngine> engine_;

 public:
  std::shared_ptr<Database> database;
  std::vector<site::Snapshot> controllers;
};

bool hasTable(const fs::path& file, const std::string& table) {
  if (!fs::exists(file) || fs::is_empty(file)) return false;
  return Connection(file.string(), {}, systemClock)
             .number("select count(*) from sqlite_master where type = 'table' and name = '" + table + "'") ==
         1;
}

std::string nameOf(const site::Snapshot& controller) {
  return "controller " + std::to_string(controller.info.station) + "/" +
         std::to_string(controller.info.address);
}

template <typename Items, typename Matches>
auto find(const Items& items, Matches matches) {
  const auto found = std::find_if(items.begin(), items.end(), matches);
  return found == items.end() ? nullptr : &*found;
}

/// How the rows of one kind are compared.
struct Kind {
  ThingKind kind;
  const char* rows;
  const char* number;
  bool (*holds)(const site::Snapshot&, const Recordset& row);
};

constexpr Kind kinds[] = {
    {ThingKind::daily, "select * from DailyPrograms where Id > 1", "Id",
     [](const site::Snapshot& controller, const Recordset& row) {
       const auto* held = find(controller.dailyPrograms,
                               [&](const auto& one) { return one.number == row.get("Id").toInt16(); });
       const std::string start = row.get("StartFirstInterval").toText();
       return held != nullptr && held->intervals.front().start ==
                                     std::stoi(start.substr(0, 2)) * 60 + std::stoi(start.substr(3));
     }},
    {ThingKind::weeklyC, "select * from WeeklyPrograms where ProgType = 'C' and ProgNum > 0", "ProgNum",
     [](const site::Snapshot& controller, const Recordset& row) {
       const auto* held = find(controller.weeklyPrograms, [&](const auto& one) {
         return one.family == 'C' && one.number == row.get("ProgNum").toInt16();
       });
       return held != nullptr && held->days.front() == row.get("DailyProgDay1").toInt16();
     }},
    {ThingKind::holiday, "select * from Holidays", "Id",
     [](const site::Snapshot& controller, const Recordset& row) {
       const auto* held =
           find(controller.holidays, [&](const auto& one) { return one.slot == row.get("Id").toInt16(); });
       const CivilTime date = toCivil(row.get("Date").toDateTime());
       return held != nullptr && held->day == date.day && held->month == date.month;
     }},
};

void checkPrograms(const Sides& sides, Findings& findings) {
  for (const Kind& kind : kinds) {
    for (const auto rows = sides.rows(kind.rows); !rows->eof(); rows->moveNext()) {
      for (const site::Snapshot& controller : sides.controllers) {
        const std::int32_t number = rows->get(kind.number).toInt32();
        if (kind.holds(controller, *rows) || sides.isPlanned(controller, kind.kind, number)) continue;
        findings.wrong.push_back(voxa::nameOf(kind.kind, number) + " is not planned and not on " +
                                 nameOf(controller));
      }
    }
  }
}

void checkCards(const Sides& sides, Findings& findings) {
  std::map<std::int16_t, std::vector<GrantedController>> granted;
  for (const auto rows = sides.rows("select * from Cardholders where Deleted = false"); !rows->eof();
       rows->moveNext()) {
    const CardRecord card = cardRecord(*rows);
    const std::int16_t group = rows->get("AccessGroupId").toInt16();
    if (!granted.contains(group)) granted[group] = controllersOf(*sides.database, group);
    for (const GrantedController& place : granted[group]) {
      const auto* controller = find(sides.controllers, [&](const site::Snapshot& one) {
        return one.info.station == place.station && one.info.address == place.address;
      });
      const auto* held = find(controller->cards, [&](const auto& one) { return one.number == card.number; });
      const CardRights rights = place.rights();
      if (sides.isPlanned(*controller, ThingKind::card, card.number)) continue;
      const bool code = held != nullptr && held->code == card.code;
      const bool program = held != nullptr && held->weekly == rights.weeklyProgram;
      const bool doors = held != nullptr && held->door1 == (card.validated && rights.firstDoor) &&
                         held->door2 == (card.validated && rights.secondDoor);
      if (code && program && doors) continue;
      findings.wrong.push_back("card " + std::to_string(card.number) + " is not planned and not on " +
                               nameOf(*controller) + (code ? "" : ": code") + (program ? "" : ": program") +
                               (doors ? "" : ": doors"));
    }
  }
}

void checkDatabases(const Plant& plant, Findings& findings) {
  if (!fs::exists(plant.folder)) return;
  for (const auto& entry : fs::directory_iterator(plant.folder)) {
    const std::string name = entry.path().filename().string();
    if (name.find('~') != std::string::npos) ++findings.seen["half-made files left behind"];
    if (toUpper(entry.path().extension().string()) != ".MDB") continue;
    try {
      makeSqliteEngine(systemClock)->open(entry.path().string())->close();
      Connection file(entry.path().string(), {}, systemClock);
      Statement integrity = file.prepare("pragma integrity_check");
      if (integrity.step() != SQLITE_ROW || integrity.text(0) != "ok") {
        findings.wrong.push_back(name + ": " + std::string(integrity.text(0)));
      }
      if (file.prepare("pragma foreign_key_check").step() != SQLITE_DONE) {
        findings.wrong.push_back(name + ": a relation does not hold");
      }
    } catch (const Error& error) {
      findings.wrong.push_back(name + " does not open: " + error.description());
    }
  }
}

void checkTransactions(const Plant& plant, int runs, Findings& findings) {
  const auto rows = journalRows(plant.folder);
  const auto held = onControllers(plant.site);
  const std::set<std::string> onController(held.begin(), held.end());
  const std::set<std::string> recorded(plant.recorded.begin(), plant.recorded.end());
  for (const std::string& data : plant.recorded) {
    const auto row = rows.find(data);
    if (row == rows.end() && !onController.contains(data)) findings.wrong.push_back("lost: " + data);
  }
  for (const auto& [data, count] : rows) {
    const auto before = plant.journalBefore.find(data);
    const int added = count - (before == plant.journalBefore.end() ? 0 : before->second);
    if (!recorded.contains(data)) findings.wrong.push_back("nobody recorded " + data);
    if (added < 0) findings.wrong.push_back("gone from the journal: " + data);
    if (added > (plant.onControllersBefore.contains(data) ? runs : 0)) {
      findings.wrong.push_back("too often in the journal: " + data);
    }
    if (count > 1) ++findings.seen["rows twice, not cleared after the first"];
  }
}

void checkBatch(const Plant& plant, const Sides& sides, Findings& findings) {
  if (plant.batchFirst == 0) return;
  const int last = plant.batchFirst + Plant::batchCards - 1;
  const auto rows = sides.rows("select Id from Cardholders where CardNum between " +
                               std::to_string(plant.batchFirst) + " and " + std::to_string(last));
  const auto cards = rows->recordCount();
  if (cards == Plant::batchCards) return;
  if (cards != 0) findings.wrong.push_back(std::to_string(cards) + " cards of a block");
  const bool stray = std::any_of(sides.controllers.begin(), sides.controllers.end(), [&](const auto& one) {
    return find(one.cards, [&](const auto& card) {
             return card.number >= plant.batchFirst && card.number <= last;
           }) != nullptr;
  });
  if (stray) ++findings.seen["blocks of cards on controllers and in no table until the next command"];
}

}  // namespace

std::map<std::string, int> journalRows(const fs::path& folder) {
  std::map<std::string, int> rows;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (toUpper(entry.path().extension().string()) != ".MDB" || !hasTable(entry.path(), "Journal")) continue;
    Connection journal(entry.path().string(), {}, systemClock);
    Statement data = journal.prepare("select TransactionData from Journal");
    while (data.step() == SQLITE_ROW) ++rows[std::string(data.text(0))];
  }
  return rows;
}

std::vector<std::string> onControllers(const fs::path& siteFolder) {
  constexpr std::size_t dataStart = 15;
  std::vector<std::string> held;
  site::Site site(siteFolder);
  for (const auto& info : site.list()) {
    for (const std::string& record : site.snapshot(info.station, info.address).memory.records) {
      held.push_back(record.substr(dataStart));
    }
  }
  return held;
}

void checkStrays(const Plant& plant, Findings& findings) {
  const Sides sides(plant);
  std::set<int> known;
  for (const auto rows = sides.rows("select CardNum from Cardholders where Deleted = false"); !rows->eof();
       rows->moveNext()) {
    known.insert(rows->get("CardNum").toInt32());
  }
  for (const site::Snapshot& controller : sides.controllers) {
    for (const auto& card : controller.cards) {
      if (known.contains(card.number)) continue;
      findings.wrong.push_back("card " + std::to_string(card.number) + " is in no table and on " +
                               nameOf(controller));
    }
  }
}

void check(const Plant& plant, int runs, Findings& findings) {
  checkDatabases(plant, findings);
  if (!findings.wrong.empty()) return;  // then no more can be read from it
  checkTransactions(plant, runs, findings);
  if (!hasTable(plant.folder / "KRV.mdb", "Cardholders")) return;
  const Sides sides(plant);
  checkBatch(plant, sides, findings);
  checkPrograms(sides, findings);
  checkCards(sides, findings);
}

}  // namespace voxa::crash
