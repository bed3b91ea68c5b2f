// voxa holiday: the dates on which the holiday program of every weekly program is in force.

#include <iostream>

#include "comm/com.h"
#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/holidays.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct HolidayOptions {
  std::string name, date;
  bool eachYear = false;
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

void listHolidays(Session& session, bool json) {
  session.open();
  TableOutput table({"Id", "Name", "Date", "EachYear", "ToSend"});
  for (const HolidayRow& holiday : voxa::listHolidays(session.library())) {
    table.add({holiday.slot, holiday.name, holiday.date, holiday.eachYear, holiday.toSend});
  }
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
  add->footer("Example:\n  voxa holiday add Christmas --date 25/12/2026 --each-year");
  add->callback([&session, added] { addHoliday(session, *added); });

  addListCommand(*group, session, "list", "List the holidays", "voxa holiday list", listHolidays);

  auto* remove = group->add_subcommand("delete", "Erase a holiday on the controllers, then delete it");
  auto name = std::make_shared<std::string>();
  remove->add_option("HOLIDAY", *name, "Number or name of the holiday")->required();
  remove->footer("Example:\n  voxa holiday delete Christmas");
  remove->callback([&session, name] { deleteHoliday(session, *name); });
}

}  // namespace voxa::cli
