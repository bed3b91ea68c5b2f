#include "work/holidays.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "comm/com.h"
#include "lines/controller_date.h"
#include "lines/holiday.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "programs/holidays.h"
#include "work/installation.h"
#include "work/line_test.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

DateTime holidayDate(const std::string& text, const Clock& clock) {
  const auto date = parseDateTime(text, &clock);
  if (date && date->days >= 1 && date->days == std::floor(date->days)) return *date;
  throw Refusal("'" + text + "' is no date: write 25/12/2026 or 2026-12-25");
}

void requireYear(const DateTime& date, bool eachYear, const Clock& clock) {
  // The controllers know a year by its last two digits, and 00 means every year to them.
  const int year = toCivil(date).year;
  if (eachYear || (year % 100 != 0 && controllersRead(date, clock.now()))) return;
  throw Refusal("the controllers cannot tell the year " + std::to_string(year) + " from another");
}

DateTime today(const Clock& clock) {
  return {std::floor(clock.now().days)};
}

/// Every controller gets every holiday; only the newer VRMD1 has more than 20 slots.
bool allAreVrmd1(Database& database) {
  bool any = false;
  const auto readers = database.openRecordset("select ControllerType from Readers");
  for (; !readers->eof(); readers->moveNext(), any = true) {
    if (readers->get("ControllerType") != Value("VRMD1")) return false;
  }
  return any;
}

/// The first day of a holiday from `day` on; Null when there is none.
Value firstFrom(DateTime day, const Recordset& row) {
  if (row.get("Date").isNull()) return {};
  CivilTime on = toCivil({std::floor(row.get("Date").toDateTime().days)});
  constexpr int longestWait = 8;  // for 29 February
  const int year = row.get("EachYear").toBool() ? toCivil(day).year : on.year;
  const int lastYear = row.get("EachYear").toBool() ? year + longestWait : year;
  for (on.year = year; on.year <= lastYear; ++on.year) {
    if (isValid(on) && toDateTime(on) >= day) return toDateTime(on);
  }
  return {};
}

HolidayRow holidayOf(const Recordset& row, DateTime from) {
  return {row.get("Id").toInt16(),      row.get("Name").toText(),         row.get("Date"),
          row.get("EachYear").toBool(), row.get("HolidayFlagD").toBool(), firstFrom(from, row)};
}

std::vector<HolidayRow> holidaysFrom(Installation& installation, DateTime day) {
  std::vector<HolidayRow> holidays;
  const auto rows = installation.database().openRecordset("select * from Holidays order by Id");
  for (; !rows->eof(); rows->moveNext()) holidays.push_back(holidayOf(*rows, day));
  return holidays;
}

std::vector<std::string> holidaysOver(Installation& installation) {
  std::vector<std::string> names;
  for (const HolidayRow& holiday : listHolidays(installation)) {
    if (!holiday.date.isNull() && holiday.day.isNull()) {
      names.push_back(holiday.name + " (" + shortDate(holiday.date.toDateTime()) + ")");
    }
  }
  return names;
}

}  // namespace

std::int16_t addHoliday(Installation& installation, const std::string& name, const std::string& date,
                        bool eachYear) {
  bool sixtySlots = allAreVrmd1(installation.database());
  const std::int16_t slot = installation.Holidays().getFreeId(sixtySlots);
  if (slot == -1) {
    const auto over = holidaysOver(installation);
    throw Refusal(std::string("the controllers hold all the holidays they can (") +
                  (sixtySlots ? "60)" : "20)") +
                  (over.empty() ? "" : "; these are over and can be deleted:" + eachOnALine(over)));
  }
  const DateTime day = holidayDate(date, installation.clock());
  requireYear(day, eachYear, installation.clock());
  const auto rows = installation.database().openRecordset("select * from Holidays");
  rows->addNew();
  rows->set("Id", slot);
  rows->set("Name", checkedName(name));
  rows->set("Date", day);
  rows->set("EachYear", eachYear);
  rows->set("HolidayFlagD", true);
  storeRow(installation, *rows, "Holidays", "holiday");
  return slot;
}

void changeHoliday(Installation& installation, const std::string& numberOrName, const HolidayTexts& texts) {
  const auto row = holidayNamed(installation, numberOrName);
  row->edit();
  if (texts.name) row->set("Name", checkedName(*texts.name));
  if (texts.date) row->set("Date", holidayDate(*texts.date, installation.clock()));
  if (texts.eachYear) row->set("EachYear", *texts.eachYear);
  if (texts.date || texts.eachYear) {
    if (!row->get("Date").isNull())
      requireYear(row->get("Date").toDateTime(), row->get("EachYear").toBool(), installation.clock());
    row->set("HolidayFlagD", true);
  }
  storeRow(installation, *row, "Holidays", "holiday");
}

HolidayRow findHoliday(Installation& installation, const std::string& numberOrName) {
  return holidayOf(*holidayNamed(installation, numberOrName), today(installation.clock()));
}

std::vector<HolidayRow> listHolidays(Installation& installation) {
  return holidaysFrom(installation, today(installation.clock()));
}

std::vector<HolidayRow> holidaysByDay(Installation& installation, std::optional<int> year) {
  std::vector<HolidayRow> holidays =
      holidaysFrom(installation, year ? toDateTime({*year, 1, 1, 0, 0, 0}) : today(installation.clock()));
  if (year) {
    std::erase_if(holidays, [&](const HolidayRow& holiday) {
      return holiday.day.isNull() || toCivil(holiday.day.toDateTime()).year != *year;
    });
  }
  const auto key = [](const HolidayRow& holiday) {
    return holiday.day.isNull() ? std::numeric_limits<double>::max() : holiday.day.toDateTime().days;
  };
  std::stable_sort(holidays.begin(), holidays.end(),
                   [&](const HolidayRow& one, const HolidayRow& other) { return key(one) < key(other); });
  return holidays;
}

Report deleteHoliday(Installation& installation, std::int16_t slot) {
  const auto row = holidayNamed(installation, std::to_string(slot));
  Report report;
  Report::Row& told = report.rows.emplace_back();
  told.row = row->get("Name").toText();
  const std::int16_t sent = installation.Com().sendCommand(clearHolidayLine(slot), {}, into(told.notices));
  report.controllers = silentControllers(installation, {});
  if (sent == 0 && report.controllers.empty()) {
    row->remove();
    return report;
  }
  told.outcome = Outcome::failed;
  row->edit();
  row->set("HolidayFlagD", true);
  row->update();
  return report;
}

}  // namespace voxa
