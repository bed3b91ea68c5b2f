#include "simulation/doors.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <tuple>

#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "site/site.h"
#include "work/carry_out.h"

namespace voxa::simulation {

namespace {

constexpr site::Date days[] = {{2026, 12, 23}, {2026, 12, 24}, {2026, 12, 25}, {2027, 5, 3}};
constexpr int minutes[] = {9 * 60, 12 * 60 + 15, 13 * 60 + 45, 18 * 60 + 30};

/// The programs and holidays that decide, from wherever they come.
struct Times {
  std::map<int, std::vector<site::Interval>> dailies;
  std::map<int, site::WeeklyProgram> weeklies;  // of family C
  std::vector<site::Holiday> holidays;

  [[nodiscard]] bool opens(int program, const site::Date& day, int minute) const {
    if (program == 0) return true;
    const auto weekly = weeklies.find(program);
    if (weekly == weeklies.end()) return false;
    const bool holiday = std::any_of(holidays.begin(), holidays.end(), [&](const site::Holiday& each) {
      return each.day == day.day && each.month == day.month && (!each.year || *each.year == day.year);
    });
    const int number = holiday ? weekly->second.holiday
                               : weekly->second.days.at(static_cast<std::size_t>(site::weekday(day)) - 1);
    const auto daily = dailies.find(number);
    if (daily == dailies.end()) return false;
    return std::any_of(daily->second.begin(), daily->second.end(), [&](const site::Interval& interval) {
      return interval.start <= minute && minute < interval.end;
    });
  }

  [[nodiscard]] std::uint32_t openings(const site::Card& card) const {
    std::uint32_t bits = 0;
    std::uint32_t bit = 1;
    for (const site::Date& day : days) {
      for (const int minute : minutes) {
        const bool valid =
            card.weekly && (!card.validUntil || day <= *card.validUntil) && opens(*card.weekly, day, minute);
        for (const bool door : {card.door1, card.door2}) {
          if (valid && door) bits |= bit;
          bit <<= 1;
        }
      }
    }
    return bits;
  }
};

int minuteOf(const Recordset& row, const char* column) {
  const int minute = static_cast<int>(row.get(column).toDateTime().days * 24 * 60 + 0.5);
  return minute == 24 * 60 - 1 ? 24 * 60 : minute;
}

site::Date dateOf(const Value& value) {
  const CivilTime date = toCivil(value.toDateTime());
  return {date.year, date.month, date.day};
}

/// slots: for holidays, of the controller; those behind them are left out.
Times timesOf(Database& db, int slots) {
  Times times;
  for (auto row = db.openRecordset("select * from DailyPrograms where Id <> 0"); !row->eof();
       row->moveNext()) {
    times.dailies[row->get("Id").toInt16()] = {
        {minuteOf(*row, "StartFirstInterval"), minuteOf(*row, "EndFirstInterval")},
        {minuteOf(*row, "StartSecondInterval"), minuteOf(*row, "EndSecondInterval")}};
  }
  for (auto row = db.openRecordset("select * from WeeklyPrograms where ProgType = 'C'"); !row->eof();
       row->moveNext()) {
    site::WeeklyProgram& program = times.weeklies[row->get("ProgNum").toInt16()];
    for (std::size_t day = 0; day < program.days.size(); ++day)
      program.days.at(day) = row->get("DailyProgDay" + std::to_string(day + 1)).toInt16();
    program.holiday = row->get("DailyProgHolidays").toInt16();
  }
  for (auto row = db.openRecordset("select * from Holidays"); !row->eof(); row->moveNext()) {
    const site::Date date = dateOf(row->get("Date"));
    site::Holiday holiday{row->get("Id").toInt16(), date.day, date.month, date.year};
    if (row->get("EachYear").toBool()) holiday.year.reset();
    if (holiday.slot <= slots) times.holidays.push_back(holiday);
  }
  return times;
}

using Key = std::tuple<ControllerPlace, int, std::string>;
using History = std::map<Key, std::uint32_t>;

History read(const fs::path& notes) {
  History history;
  std::ifstream in(notes);
  ControllerPlace place;
  int number = 0;
  std::string code;
  std::uint32_t bits = 0;
  while (in >> place.station >> place.address >> number >> code >> bits)
    history[{place, number, code}] = bits;
  return history;
}

void write(const fs::path& notes, const History& history) {
  std::ofstream out(notes);
  for (const auto& [key, bits] : history) {
    const auto& [place, number, code] = key;
    out << place.station << ' ' << place.address << ' ' << number << ' ' << code << ' ' << bits << '\n';
  }
}

std::string nameOfKey(const Key& key) {
  const auto& [place, number, code] = key;
  return nameOf(place) + " card " + std::to_string(number) + " of code " + code;
}

}  // namespace

std::map<ControllerPlace, Openings> openingsByRows(const World& world, Session& session) {
  Database& db = session.db();
  std::map<ControllerPlace, Openings> all;
  for (const auto& [place, type] : world.controllers) {
    const Times times = timesOf(db, type == "VRMD1" ? 60 : 20);
    for (auto row =
             db.openRecordset("select * from Cardholders where Deleted = false and CardCode is not null");
         !row->eof(); row->moveNext()) {
      site::Card card;
      card.number = row->get("CardNum").toInt16();
      const auto links = db.openRecordset(
          "select Position, AccGroupReaders.WeeklyProgNum as Program from AccGroupReaders, Readers where "
          "ReaderId = Readers.Id and StationId = " +
          std::to_string(place.station) + " and ControllerAddress = " + std::to_string(place.address) +
          " and AccessGroupId = " + row->get("AccessGroupId").toText() + " order by Position");
      if (links->eof()) continue;
      card.weekly = links->get("Program").toInt16();
      for (; !links->eof(); links->moveNext()) {
        const bool granted =
            row->get("Validated").toBool() && links->get("Program").toInt16() == *card.weekly;
        (links->get("Position").toInt16() == 1 ? card.door1 : card.door2) = granted;
      }
      if (const Value day = row->get("ValidationDate"); !day.isNull()) card.validUntil = dateOf(day);
      all[place][card.number][zeroPadded(row->get("CardCode").toInt32(), 8)] |= times.openings(card);
    }
  }
  return all;
}

std::map<ControllerPlace, Openings> openingsByControllers(const World& world) {
  site::Site site(world.site);
  std::map<ControllerPlace, Openings> all;
  for (const auto& [place, type] : world.controllers) {
    const site::Snapshot there = site.snapshot(place.station, place.address);
    Times times;
    for (const auto& program : there.dailyPrograms) times.dailies[program.number] = program.intervals;
    for (const auto& program : there.weeklyPrograms) {
      if (program.family == 'C') times.weeklies[program.number] = program;
    }
    times.holidays = there.holidays;
    for (const site::Card& card : there.cards) all[place][card.number][card.code] |= times.openings(card);
  }
  return all;
}

std::vector<std::string> neverAllowed(const World& world, Session& session, const fs::path& notes) {
  History history = read(notes);
  const WholePlan plan = planAll(session.library(), {});
  for (const PlannedController& controller : plan.controllers) {
    std::set<int> open;
    bool times = false;
    for (const PlanItem& item : controller.plan.items) {
      times = times || item.kind != ThingKind::card;
      if (item.kind == ThingKind::card) open.insert(item.number);
    }
    for (const LeftOut& row : plan.leftOut) open.insert(row.number);
    std::erase_if(history, [&](const auto& entry) {
      const auto& [place, number, code] = entry.first;
      return place == controller.plan.place && !times && !open.contains(number);
    });
  }
  for (const auto& [place, cards] : openingsByRows(world, session)) {
    for (const auto& [number, codes] : cards) {
      for (const auto& [code, bits] : codes) history[{place, number, code}] |= bits;
    }
  }
  write(notes, history);
  std::vector<std::string> wrong;
  for (const auto& [place, cards] : openingsByControllers(world)) {
    for (const auto& [number, codes] : cards) {
      for (const auto& [code, bits] : codes) {
        const Key key{place, number, code};
        const auto allowed = history.find(key);
        if ((bits & ~(allowed == history.end() ? 0U : allowed->second)) != 0)
          wrong.push_back(nameOfKey(key) + " opens what no row allowed");
      }
    }
  }
  return wrong;
}

std::vector<std::string> differences(const World& world, Session& session) {
  std::vector<std::string> wrong;
  const WholePlan plan = planAll(session.library(), {});
  std::set<int> leftOut;
  for (const LeftOut& row : plan.leftOut) leftOut.insert(row.number);
  for (const PlannedController& controller : plan.controllers) {
    for (const PlanItem& item : controller.plan.items) {
      wrong.push_back(nameOf(controller.plan.place) + " is still to " + textOf(item.action) + " " +
                      nameOf(item.kind, item.number) + ": " + textOf(item.reason));
    }
  }
  const auto rows = openingsByRows(world, session);
  const auto there = openingsByControllers(world);
  for (const auto& [place, type] : world.controllers) {
    if (!world.assumed.at(place) || world.wrongType.contains(place)) continue;
    for (const auto& [from, to] : {std::pair(&rows, &there), std::pair(&there, &rows)}) {
      const auto cards = from->find(place);
      if (cards == from->end()) continue;
      for (const auto& [number, codes] : cards->second) {
        if (leftOut.contains(number)) continue;
        const auto other = to->find(place);
        const auto same = other == to->end() ? Openings::const_iterator() : other->second.find(number);
        const bool absent = other == to->end() || same == other->second.end();
        // A card that is not valid need not be there.
        const bool shut =
            std::all_of(codes.begin(), codes.end(), [](const auto& code) { return code.second == 0; });
        if (absent ? !shut : same->second != codes)
          wrong.push_back(nameOf(place) + " card " + std::to_string(number) + " is not as the rows have it");
      }
    }
  }
  return wrong;
}

}  // namespace voxa::simulation
