#include "site/holdings.h"

#include <sstream>

#include "site/storage.h"

namespace site {

namespace {

using Id = std::int64_t;

#define CARD_COLUMNS "number, code, weekly, door1, door2, pin, supervisor, valid_until, credit"
#define WEEKLY_COLUMNS "family, number, d1, d2, d3, d4, d5, d6, d7, holiday"

Card cardFromRow(const Row& row) {
  Card card;
  card.number = row.number(0);
  card.code = row.text(1);
  card.weekly = row.maybe<int>(2);
  card.door1 = row.flag(3);
  card.door2 = row.flag(4);
  card.pin = row.text(5);
  card.supervisor = row.flag(6);
  if (!row.isNull(7)) card.validUntil = unpacked(row.number(7));
  card.credit = row.maybe<int>(8);
  return card;
}

WeeklyProgram weeklyFromRow(const Row& row) {
  WeeklyProgram program;
  program.family = row.text(0).front();
  program.number = row.number(1);
  for (std::size_t day = 0; day < program.days.size(); ++day) {
    program.days[day] = row.number(static_cast<int>(day) + 2);
  }
  program.holiday = row.number(9);
  return program;
}

// Intervals are stored as "start end start end …", in minutes since midnight.
std::string intervalText(const DailyProgram& program) {
  std::ostringstream text;
  for (const Interval& interval : program.intervals) text << interval.start << ' ' << interval.end << ' ';
  return text.str();
}

DailyProgram dailyFromRow(const Row& row) {
  DailyProgram program;
  program.number = row.number(0);
  std::istringstream text(row.text(1));
  for (Interval interval; text >> interval.start >> interval.end;) program.intervals.push_back(interval);
  return program;
}

// Raises Undecodable when the last update found no card.
void requireCard(const Storage& storage) {
  if (storage.changes() == 0) throw Undecodable("unknown card");
}

class Holder {
 public:
  Holder(Storage& storage, Id controller) : storage_(storage), controller_(controller) {}

  void operator()(const DailyProgram& program) const {
    storage_.run("replace into daily_programs values (?, ?, ?)", controller_, program.number,
                 intervalText(program));
  }
  void operator()(const WeeklyProgram& program) const {
    const auto& days = program.days;
    storage_.run("replace into weekly_programs values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", controller_,
                 std::string_view(&program.family, 1), program.number, days[0], days[1], days[2], days[3],
                 days[4], days[5], days[6], program.holiday);
  }
  void operator()(const Holiday& holiday) const {
    storage_.run("replace into holidays values (?, ?, ?, ?, ?)", controller_, holiday.slot, holiday.day,
                 holiday.month, holiday.year);
  }
  void operator()(const EraseHoliday& erase) const {
    storage_.run("delete from holidays where controller = ? and slot = ?", controller_, erase.slot);
  }
  void operator()(const BadgeFormat& format) const {
    storage_.run("replace into badge_formats values (?, ?, ?, ?, ?, ?, ?, ?)", controller_, format.reader,
                 format.technology, format.sitePosition, format.siteLength, format.cardPosition,
                 format.cardType, format.siteCode);
  }
  void operator()(const CardCode& card) const {
    storage_.run(
        "insert into cards (controller, number, code) values (?, ?, ?) "
        "on conflict (controller, number) do update set code = excluded.code",
        controller_, card.number, card.code);
  }
  void operator()(const EraseCard& erase) const {
    storage_.run("delete from cards where controller = ? and number = ?", controller_, erase.number);
    storage_.run("delete from lifts where controller = ? and card = ?", controller_, erase.number);
  }
  void operator()(const CardSetting& setting) const {
    storage_.run(update(setting.field), setting.value, controller_, setting.number);
    requireCard(storage_);
  }
  void operator()(const CardPin& card) const {
    storage_.run("update cards set pin = ? where controller = ? and number = ?", card.pin, controller_,
                 card.number);
    requireCard(storage_);
  }
  void operator()(const CardLift& lift) const {
    if (!cardByNumber(storage_, controller_, lift.number)) throw Undecodable("unknown card");
    storage_.run("insert or ignore into lifts values (?, ?, ?)", controller_, lift.number, lift.output);
  }
  void operator()(const SpeedChange&) const {}

 private:
  static std::string_view update(CardField field) {
    switch (field) {
      case CardField::weekly:
        return "update cards set weekly = ? where controller = ? and number = ?";
      case CardField::door1:
        return "update cards set door1 = ? where controller = ? and number = ?";
      case CardField::door2:
        return "update cards set door2 = ? where controller = ? and number = ?";
      case CardField::supervisor:
        return "update cards set supervisor = ? where controller = ? and number = ?";
      case CardField::validUntil:
        return "update cards set valid_until = ? where controller = ? and number = ?";
      case CardField::credit:
        break;
    }
    return "update cards set credit = ? where controller = ? and number = ?";
  }

  Storage& storage_;
  Id controller_;
};

}  // namespace

void hold(Storage& storage, Id controller, const Command& command) {
  std::visit(Holder(storage, controller), command);
}

void readHoldings(Storage& storage, Id controller, Snapshot& into) {
  storage.each(
      "select number, intervals from daily_programs where controller = ? order by number",
      [&](const Row& row) { into.dailyPrograms.push_back(dailyFromRow(row)); }, controller);
  storage.each(
      "select " WEEKLY_COLUMNS " from weekly_programs where controller = ? order by family, number",
      [&](const Row& row) { into.weeklyPrograms.push_back(weeklyFromRow(row)); }, controller);
  storage.each(
      "select slot, day, month, year from holidays where controller = ? order by slot",
      [&](const Row& row) {
        into.holidays.push_back({row.number(0), row.number(1), row.number(2), row.maybe<int>(3)});
      },
      controller);
  storage.each(
      "select " CARD_COLUMNS " from cards where controller = ? order by number",
      [&](const Row& row) { into.cards.push_back(cardFromRow(row)); }, controller);
  auto card = into.cards.begin();
  storage.each(
      "select card, output from lifts where controller = ? order by card, output",
      [&](const Row& row) {
        while (card->number < row.number(0)) ++card;  // each lift belongs to a card that is in the list
        card->lifts.push_back(row.number(1));
      },
      controller);
  storage.each(
      "select reader, technology, site_position, site_length, card_position, card_type, site_code "
      "from badge_formats where controller = ? order by reader",
      [&](const Row& row) {
        into.badgeFormats.push_back({row.number(0), row.text(1), row.number(2), row.number(3), row.number(4),
                                     row.number(5), row.text(6)});
      },
      controller);
}

std::optional<Card> cardByCode(Storage& storage, Id controller, const std::string& code) {
  std::optional<Card> found;
  storage.each(
      "select " CARD_COLUMNS " from cards where controller = ? and code = ? order by number limit 1",
      [&](const Row& row) { found = cardFromRow(row); }, controller, code);
  return found;
}

std::optional<Card> cardByNumber(Storage& storage, Id controller, int number) {
  std::optional<Card> found;
  storage.each(
      "select " CARD_COLUMNS " from cards where controller = ? and number = ?",
      [&](const Row& row) { found = cardFromRow(row); }, controller, number);
  return found;
}

std::optional<WeeklyProgram> weeklyProgram(Storage& storage, Id controller, char family, int number) {
  std::optional<WeeklyProgram> found;
  storage.each(
      "select " WEEKLY_COLUMNS " from weekly_programs where controller = ? and family = ? and number = ?",
      [&](const Row& row) { found = weeklyFromRow(row); }, controller, std::string_view(&family, 1), number);
  return found;
}

std::optional<DailyProgram> dailyProgram(Storage& storage, Id controller, int number) {
  std::optional<DailyProgram> found;
  storage.each(
      "select number, intervals from daily_programs where controller = ? and number = ?",
      [&](const Row& row) { found = dailyFromRow(row); }, controller, number);
  return found;
}

bool isHoliday(Storage& storage, Id controller, const Date& date) {
  bool found = false;
  storage.each(
      "select 1 from holidays where controller = ? and day = ? and month = ? and (year is null or year = ?) "
      "limit 1",
      [&](const Row&) { found = true; }, controller, date.day, date.month, date.year);
  return found;
}

void eraseHoldings(Storage& storage, Id controller) {
  storage.run("delete from daily_programs where controller = ?", controller);
  storage.run("delete from weekly_programs where controller = ?", controller);
  storage.run("delete from holidays where controller = ?", controller);
  storage.run("delete from cards where controller = ?", controller);
  storage.run("delete from lifts where controller = ?", controller);
  storage.run("delete from badge_formats where controller = ?", controller);
}

}  // namespace site
