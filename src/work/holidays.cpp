#include "work/holidays.h"

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

DateTime holidayDate(const std::string& text, bool eachYear, const Clock& clock) {
  const auto date = parseDateTime(text, &clock);
  if (!date || text.find(':') != std::string::npos) {
    throw Refusal("'" + text + "' is no date: write day, month and year as 25/12/2026");
  }
  // The controllers know a year by its last two digits, and 00 means every year to them.
  const int year = toCivil(*date).year;
  if (eachYear || (year % 100 != 0 && controllersRead(*date, clock.now()))) return *date;
  throw Refusal("the controllers cannot tell the year " + std::to_string(year) + " from another");
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

HolidayRow holidayOf(const Recordset& row) {
  return {row.get("Id").toInt16(), row.get("Name").toText(), row.get("Date"), row.get("EachYear").toBool(),
          row.get("HolidayFlagD").toBool()};
}

}  // namespace

std::int16_t addHoliday(Installation& installation, const std::string& name, const std::string& date,
                        bool eachYear) {
  bool sixtySlots = allAreVrmd1(installation.database());
  const std::int16_t slot = installation.Holidays().getFreeId(sixtySlots);
  if (slot == -1) {
    throw Refusal(std::string("the controllers hold all the holidays they can (") +
                  (sixtySlots ? "60)" : "20)"));
  }
  const auto rows = installation.database().openRecordset("select * from Holidays");
  rows->addNew();
  rows->set("Id", slot);
  rows->set("Name", checkedName(name));
  rows->set("Date", holidayDate(date, eachYear, installation.clock()));
  rows->set("EachYear", eachYear);
  rows->set("HolidayFlagD", true);
  storeRow(installation, *rows, "Holidays", "holiday");
  return slot;
}

HolidayRow findHoliday(Installation& installation, const std::string& numberOrName) {
  return holidayOf(*holidayNamed(installation, numberOrName));
}

std::vector<HolidayRow> listHolidays(Installation& installation) {
  std::vector<HolidayRow> holidays;
  const auto rows = installation.database().openRecordset("select * from Holidays order by Id");
  for (; !rows->eof(); rows->moveNext()) holidays.push_back(holidayOf(*rows));
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
