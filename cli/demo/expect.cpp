#include "expect.h"

#include <algorithm>
#include <cmath>

#include "platform/datetime.h"
#include "platform/text.h"
#include "work/cards.h"
#include "work/daily_programs.h"
#include "work/group_list.h"
#include "work/holidays.h"
#include "work/readers.h"
#include "work/stations.h"
#include "work/weekly_programs.h"

namespace voxa::cli {

namespace {

// By the reader's position on its controller.
std::string typeOf(TransactionMeaning meaning, int position) {
  static const std::map<TransactionMeaning, std::array<const char*, 4>> types = {
      {TransactionMeaning::granted, {"00", "02", "01", "03"}},
      {TransactionMeaning::refusedByTime, {"20", "22", "21", "23"}},
      {TransactionMeaning::refusedByRights, {"24", "26", "25", "27"}},
      {TransactionMeaning::unknownCard, {"10", "12", "11", "13"}}};
  return types.at(meaning).at(static_cast<std::size_t>(position) - 1);
}

// "08:30", the end of the day as "24:00"
int minuteOf(const std::string& time) {
  return std::stoi(time.substr(0, 2)) * 60 + std::stoi(time.substr(3, 2));
}

std::string asRecorded(const std::string& code) {
  std::string text;
  for (const char c : code) text += c >= 'A' ? static_cast<char>(c - 'A' + ':') : c;
  return text;
}

}  // namespace

const char* textOf(Reason reason) {
  constexpr std::array<const char*, reasonCount> texts = {
      "allowed",          "outside its hours", "holiday",
      "a door of others", "invalidated card",  "past its last day",
      "credit used up",   "unknown code",      "card of no door of this controller"};
  return texts.at(static_cast<std::size_t>(reason));
}

TransactionMeaning meaningOf(Reason reason) {
  switch (reason) {
    case Reason::allowed:
      return TransactionMeaning::granted;
    case Reason::outsideHours:
    case Reason::holiday:
      return TransactionMeaning::refusedByTime;
    case Reason::unknownCode:
    case Reason::unknownHere:
      return TransactionMeaning::unknownCard;
    default:
      return TransactionMeaning::refusedByRights;
  }
}

DoorRules::DoorRules(Installation& installation) {
  readDoors(installation);
  readPrograms(installation);
  readCards(installation);
}

void DoorRules::readDoors(Installation& installation) {
  for (const StationRow& station : listStations(installation)) stationNames_[station.id] = station.name;
  std::map<std::string, ReaderRow> readers;
  for (const ReaderRow& reader : listReaders(installation)) {
    readerNames_[reader.id] = reader.name;
    readers[reader.name] = reader;
  }
  for (const GroupRow& group : listGroups(installation)) {
    groups_[group.name] = group.id;
    for (const GroupRow::Door& door : group.doors) {
      if (door.side.access == DoorSide::Access::otherSide) continue;  // which it opens is no grant
      const ReaderRow& reader = readers.at(door.side.reader);
      programs_[{group.id, reader.id}] = door.side.weeklyProgram;
      reached_.insert({group.id, {reader.stationId, reader.address.toInt32()}});
    }
  }
}

void DoorRules::readCards(Installation& installation) {
  for (const CardRow& row : listCards(installation)) {
    Card card{row.number.toInt32(),
              row.name.toText(),
              groups_.at(row.group.toText()),
              row.valid.toBool(),
              {},
              row.credit.isNull() ? 0 : row.credit.toInt16()};
    if (!row.until.isNull()) card.lastDay = static_cast<int>(row.until.toDateTime().days);
    cards_.emplace(row.code.toText(), std::move(card));
  }
}

void DoorRules::readPrograms(Installation& installation) {
  for (const WeeklyProgramRow& program : listWeeklyPrograms(installation)) {
    if (program.family != "C") continue;
    Weekly& weekly = weekly_[program.number];
    for (std::size_t day = 0; day < weekly.days.size(); ++day) weekly.days.at(day) = program.week.at(day).id;
    weekly.holidays = program.week.at(holidaysPlace).id;
  }
  for (const DailyProgramRow& program : listDailyPrograms(installation)) {
    auto& intervals = daily_[program.id];
    for (const std::string& interval : program.intervals) {
      if (interval == "none") continue;
      const std::size_t dash = interval.find('-');
      intervals.emplace_back(minuteOf(interval.substr(0, dash)), minuteOf(interval.substr(dash + 1)));
    }
  }
  for (const HolidayRow& holiday : listHolidays(installation)) {
    const CivilTime date = toCivil(holiday.date.toDateTime());
    holidays_.insert({date.day, date.month, holiday.eachYear ? 0 : date.year});
  }
}

bool DoorRules::isHoliday(int day) const {
  const CivilTime date = toCivil({static_cast<double>(day)});
  return holidays_.contains({date.day, date.month, 0}) ||
         holidays_.contains({date.day, date.month, date.year});
}

bool DoorRules::isOpen(int program, int day, int minute) const {
  const Weekly& weekly = weekly_.at(program);
  // Day 2 was a Monday.
  const auto weekday = static_cast<std::size_t>((day - 2) % 7);
  const auto& intervals = daily_.at(isHoliday(day) ? weekly.holidays : weekly.days.at(weekday));
  return std::any_of(intervals.begin(), intervals.end(), [&](const Interval& interval) {
    return interval.first <= minute && minute < interval.second;
  });
}

Reason DoorRules::decide(const Card& card, const Presentation& presentation) {
  const Controller controller{presentation.station, presentation.address};
  if (!reached_.contains({card.group, controller})) return Reason::unknownHere;
  if (!card.validated) return Reason::invalidated;
  const auto program = programs_.find({card.group, presentation.reader});
  if (program == programs_.end()) return Reason::otherDoor;
  const int day = static_cast<int>(std::floor(presentation.moment.days));
  if (card.lastDay && *card.lastDay < day) return Reason::expired;
  int& used = used_[{card.number, controller}];
  if (card.credit != 0 && used == card.credit) return Reason::creditUsedUp;
  const CivilTime time = toCivil(presentation.moment);
  if (!isOpen(program->second, day, time.hour * 60 + time.minute)) {
    return isHoliday(day) ? Reason::holiday : Reason::outsideHours;
  }
  ++used;
  return Reason::allowed;
}

Expected DoorRules::expect(const Presentation& presentation) {
  Expected expected;
  const auto card = cards_.find(presentation.code);
  expected.reason = card == cards_.end() ? Reason::unknownCode : decide(card->second, presentation);
  const TransactionMeaning meaning = meaningOf(expected.reason);
  const bool known = meaning != TransactionMeaning::unknownCard;
  expected.entry = {formatDateTime(presentation.moment, "dd/mm/yyyy hh:nn"),
                    presentation.station,
                    stationNames_.at(presentation.station),
                    presentation.reader,
                    readerNames_.at(presentation.reader),
                    typeOf(meaning, presentation.position),
                    known ? card->second.name : "",
                    known ? "00" + zeroPadded(card->second.number, 4) + "00" : asRecorded(presentation.code)};
  return expected;
}

}  // namespace voxa::cli
