// voxa holiday: the dates on which the holiday program of every weekly program is in force.

#include <iostream>

#include "comm/com.h"
#include "commands.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "thing_commands.h"
#include "work/holidays.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct HolidayOptions {
  std::string name, date;
  bool eachYear = false;
};

struct HolidayChange {
  std::string holiday;
  HolidayTexts texts;
};

void addHoliday(Session& session, const HolidayOptions& options) {
  session.open();
  const std::int16_t slot = voxa::addHoliday(session.library(), options.name, options.date, options.eachYear);
  std::cout << "Holiday " << slot << ": " << options.name << '\n';
}

void deleteHoliday(Session& session, const std::string& numberOrName) {
  session.openForSending();
  const HolidayRow holiday = findHoliday(session.library(), numberOrName);
  if (!session.com().readyToSend(CTActiveStations, "", nullptr)) {
    throw Refusal("aborted: " + holiday.name + " stays as it is");
  }
  const Report report = voxa::deleteHoliday(session.library(), holiday.slot);
  const Report::Row& row = report.rows.front();
  session.show(report);
  if (row.outcome != Outcome::done) {
    throw Refusal(holiday.name + " stays, marked to be sent: delete it again when every controller answers" +
                  eachOnALine(namesOf(report.controllers)));
  }
  std::cout << "Deleted: " << holiday.name << '\n';
}

const std::vector<std::string> columns = {"Id", "Name", "Date", "EachYear", "Day", "ToSend"};

std::vector<Cell> cellsOf(const HolidayRow& holiday) {
  return {holiday.slot, holiday.name, holiday.date, holiday.eachYear, holiday.day, holiday.toSend};
}

void list(Session& session, const std::string& year, bool json) {
  session.open();
  std::optional<int> only;
  constexpr std::int16_t firstYear = 1900;
  constexpr std::int16_t lastYear = 9999;
  if (!year.empty()) only = numberWithin("the year", year, firstYear, lastYear);
  TableOutput table(columns);
  for (const HolidayRow& holiday : holidaysByDay(session.library(), only)) table.add(cellsOf(holiday));
  table.print(std::cout, json);
}

}  // namespace

void addHolidayCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("holiday", "Holidays")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a holiday");
  auto added = std::make_shared<HolidayOptions>();
  add->add_option("NAME", added->name, "Name of the new holiday")->required();
  add->add_option("--date", added->date, "Its day, as 25/12/2026")->required();
  add->add_flag("--each-year", added->eachYear, "The day and month of every year");
  add->footer(
      "Examples:\n  voxa holiday add Christmas --date 25/12/2026 --each-year\n"
      "  voxa holiday add \"Works outing\" --date 2027-05-14");
  add->callback([&session, added] { addHoliday(session, *added); });

  auto* listing = group->add_subcommand(
      "list", "List the holidays by day: the first from today on; those that are over come last");
  auto year = std::make_shared<std::string>();
  auto json = std::make_shared<bool>(false);
  listing->add_option("--year", *year, "Only the days of that year, over or not");
  listing->add_flag("--json", *json, "As a JSON array");
  listing->footer("Examples:\n  voxa holiday list\n  voxa holiday list --year 2027");
  listing->callback([&session, year, json] { list(session, *year, *json); });

  addShowCommand(*group, session, "HOLIDAY", "holiday",
                 "Examples:\n  voxa holiday show Christmas\n  voxa holiday show 3 --json",
                 [&session](const std::string& name, bool asJson) {
                   printOne(std::cout, columns, cellsOf(findHoliday(session.library(), name)), asJson);
                 });

  auto* set = group->add_subcommand("set", "Change a holiday; another day is to be sent then");
  auto changed = std::make_shared<HolidayChange>();
  set->add_option("HOLIDAY", changed->holiday, "Number or name of the holiday")->required();
  set->add_option("--name", changed->texts.name, "Its new name");
  set->add_option("--date", changed->texts.date, "Its new day, as 25/12/2026");
  auto* eachYear = set->add_flag_callback(
      "--each-year", [changed] { changed->texts.eachYear = true; }, "The day and month of every year");
  set->add_flag_callback(
         "--once", [changed] { changed->texts.eachYear = false; }, "That day alone")
      ->excludes(eachYear);
  set->footer(
      "Examples:\n  voxa holiday set \"Works outing\" --date 21/05/2027\n"
      "  voxa holiday set Christmas --each-year");
  set->callback([&session, changed] {
    session.open();
    changeHoliday(session.library(), changed->holiday, changed->texts);
  });

  addRenameCommand(*group, session, "HOLIDAY", "holiday",
                   "Examples:\n  voxa holiday rename Christmas \"Christmas Day\"\n"
                   "  voxa holiday rename 3 \"Inventory\"",
                   [&session](const std::string& holiday, const std::string& newName) {
                     changeHoliday(session.library(), holiday, {.name = newName});
                   });

  auto* remove = group->add_subcommand("delete", "Erase a holiday on the controllers, then delete it");
  auto name = std::make_shared<std::string>();
  remove->add_option("HOLIDAY", *name, "Number or name of the holiday")->required();
  remove->footer("Examples:\n  voxa holiday delete Christmas\n  voxa holiday delete 3");
  remove->callback([&session, name] { deleteHoliday(session, *name); });
}

}  // namespace voxa::cli
