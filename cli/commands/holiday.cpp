// voxa holiday: the dates on which the holiday program of every weekly program is in force.

#include <CLI/CLI.hpp>
#include <iostream>

#include "app/qdb.h"
#include "commands.h"
#include "component.h"
#include "download.h"
#include "lines/controller_date.h"
#include "output/table_output.h"
#include "platform/datetime.h"
#include "programs/holidays.h"
#include "session.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct HolidayOptions {
  std::string name, date;
  bool eachYear = false;
};

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

// Every controller gets every holiday; only the newer VRMD1 has more than 20 slots.
bool allAreVrmd1(Session& session) {
  const auto readers = session.rows("select ControllerType from Readers");
  if (readers->eof()) return false;
  while (!readers->eof() && readers->get("ControllerType") == Value("VRMD1")) readers->moveNext();
  return readers->eof();
}

void addHoliday(Session& session, const HolidayOptions& options) {
  session.open();
  bool sixtySlots = allAreVrmd1(session);
  const std::int16_t slot = session.qdb().Holidays().getFreeId(sixtySlots);
  if (slot == -1) {
    throw Refusal(std::string("the controllers hold all the holidays they can (") +
                  (sixtySlots ? "60)" : "20)"));
  }
  const auto rows = session.rows("select * from Holidays");
  rows->addNew();
  rows->set("Id", slot);
  rows->set("Name", checkedName(options.name));
  rows->set("Date", holidayDate(options.date, options.eachYear, session.clock()));
  rows->set("EachYear", options.eachYear);
  rows->set("HolidayFlagD", true);
  storeRow(session.library(), *rows, "Holidays", "holiday");
  std::cout << "Holiday " << slot << ": " << options.name << '\n';
}

void deleteHoliday(Session& session, const std::string& numberOrName) {
  session.openForSending();
  const auto row = session.rows("select * from Holidays");
  moveToNumberOrName(*row, "Id", numberOrName, "msgCantFindHolidays");
  const std::string name = row->get("Name").toText();
  const bool sent = session.qdb().Holidays().delete_(row->get("Id").toInt16()) == 0 &&
                    session.prompts().failuresShown() == 0;
  const std::vector<std::string> silent = silentControllers(session, {});
  if (sent && silent.empty()) {
    row->remove();
    std::cout << "Deleted: " << name << '\n';
    return;
  }
  // Some controllers may have emptied the slot: until it is deleted everywhere, they lack the holiday.
  row->edit();
  row->set("HolidayFlagD", true);
  row->update();
  throw Refusal(name + " stays, marked to be sent: delete it again when every controller answers" +
                eachOnALine(silent));
}

void listHolidays(Session& session, bool json) {
  session.open();
  TableOutput table({"Id", "Name", "Date", "EachYear", "ToSend"});
  const auto rows = session.rows("select * from Holidays order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    table.add({rows->get("Id"), rows->get("Name"), rows->get("Date"), rows->get("EachYear"),
               rows->get("HolidayFlagD")});
  }
  table.print(std::cout, json);
}

}  // namespace

void addHolidayCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("holiday", "Holidays")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a holiday");
  auto added = std::make_shared<HolidayOptions>();
  add->add_option("NAME", added->name, "Name of the new holiday")->required();
  add->add_option("--date", added->date, "Its day, as 25/12/2026")->required();
  add->add_flag("--each-year", added->eachYear, "The day and month of every year");
  add->footer("Example:\n  voxa holiday add Christmas --date 25/12/2026 --each-year");
  add->callback([&session, added] { addHoliday(session, *added); });

  auto* list = group->add_subcommand("list", "List the holidays");
  auto json = std::make_shared<bool>(false);
  list->add_flag("--json", *json, "As a JSON array");
  list->footer("Example:\n  voxa holiday list");
  list->callback([&session, json] { listHolidays(session, *json); });

  auto* remove = group->add_subcommand("delete", "Erase a holiday on the controllers, then delete it");
  auto name = std::make_shared<std::string>();
  remove->add_option("HOLIDAY", *name, "Number or name of the holiday")->required();
  remove->footer("Example:\n  voxa holiday delete Christmas");
  remove->callback([&session, name] { deleteHoliday(session, *name); });
}

}  // namespace voxa::cli
