// voxa station: the communication lines.

#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>

#include "app/qdb.h"
#include "comm/com.h"
#include "comm/station.h"
#include "commands.h"
#include "component.h"
#include "messages/strings.h"
#include "output/table_output.h"
#include "session.h"
#include "work/links.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct StationOptions {
  std::string name;
  std::optional<std::string> newName, port, speed, phone, modem, timeout, waiting;
  bool active = false;
  bool inactive = false;
};

constexpr std::int16_t lastPort = 256;

std::int32_t lineSpeed(const std::string& text) {
  const std::int32_t speed = number32("the speed", text);
  for (const std::int32_t known : {4800, 9600, 19200, 38400}) {
    if (speed == known) return speed;
  }
  throw Refusal("a line works at 4800, 9600, 19200 or 38400 bit/s, not at " + text);
}

std::int16_t portFrom0(const std::string& text) {
  return static_cast<std::int16_t>(numberWithin("the port", text, 1, lastPort) - 1);
}

std::int16_t unusedPort(Session& session) {
  std::int16_t port = 0;
  while (!session.qdb().Stations().getActiveStationOnPort(port).empty()) ++port;
  return port;
}

// One line per port: two active stations on it would answer for each other.
void requireFreePort(Session& session, std::int16_t port, const std::string& ownName) {
  const std::string user = session.qdb().Stations().getActiveStationOnPort(port);
  if (user.empty() || user == ownName) return;
  throw Refusal("port " + std::to_string(port + 1) + " is used by the active station " + user);
}

void setFields(Recordset& row, const StationOptions& options) {
  if (options.newName) row.set("Name", checkedPlaceName(*options.newName));
  if (options.port) row.set("ComPort", portFrom0(*options.port));
  if (options.speed) row.set("ComSpeed", lineSpeed(*options.speed));
  if (options.phone) row.set("Phone", checkedText("a telephone number", *options.phone, 25));
  if (options.modem) row.set("ModemIniFile", checkedText("the modem file", *options.modem, 20));
  if (options.timeout) row.set("TimeoutDelay", numberWithin("the time-out", *options.timeout, 1, 32767));
  if (options.waiting) row.set("WaitingDelay", numberWithin("the waiting delay", *options.waiting, 0, 32767));
  if (options.active || options.inactive) row.set("Active", !options.inactive);
}

void addStation(Session& session, StationOptions options) {
  session.openForSending();
  Station& stations = session.qdb().Stations();
  options.newName = options.name;
  options.active = !options.inactive;
  if (!options.port) options.port = std::to_string(unusedPort(session) + 1);
  if (options.active) requireFreePort(session, portFrom0(*options.port), "");
  const std::int16_t id = stations.getFreeId();
  if (id == -1) throw Refusal("the installation holds all the stations it can (998)");
  Transaction transaction(session.library().engine(),
                          session.qdb().database());  // of a row that the driver can be told
  const auto rows = session.rows("select * from Stations");
  rows->addNew();
  rows->set("Id", id);
  setFields(*rows, options);
  storeRow(session.library(), *rows, "Stations", "station");
  stations.createIniFile(id);
  transaction.commit();
  std::cout << "Station " << id << ": " << options.name << " on port " << *options.port << '\n';
}

void setStation(Session& session, const StationOptions& options) {
  session.openForSending();
  const auto row = stationNamed(session.library(), options.name);
  const bool active = options.active || (row->get("Active").toBool() && !options.inactive);
  const std::int16_t port = options.port ? portFrom0(*options.port) : row->get("ComPort").toInt16();
  if (active) requireFreePort(session, port, row->get("Name").toText());
  Transaction transaction(session.library().engine(), session.qdb().database());
  // Programs and holidays count as sent once the active stations have them.
  const bool comesIntoUse = active && !row->get("Active").toBool();
  row->edit();
  setFields(*row, options);
  storeRow(session.library(), *row, "Stations", "station");
  if (comesIntoUse) markProgramsForNewController(session.library());
  session.qdb().Stations().createIniFile(row->get("Id").toInt16());
  transaction.commit();
}

void changeSpeed(Session& session, const std::string& name, const std::string& bits) {
  session.openForSending();
  const std::int32_t speed = lineSpeed(bits);
  const auto row = stationNamed(session.library(), name);
  const std::int16_t id = row->get("Id").toInt16();
  Station& stations = session.qdb().Stations();
  stations.SendSpeed(id, speed);
  const std::string failures = session.com().popErrorList();
  if (failures.empty() && session.prompts().failuresShown() == 0) {
    row->edit();
    row->set("ComSpeed", speed);
    row->update();
  } else {
    session.strings().display("msgCantSendCommand", "voxa station speed", Value(failures));
  }
  stations.createIniFile(id);  // at the speed of the row again, whichever that is now
}

void listStations(Session& session, bool json) {
  session.open();
  TableOutput table({"Id", "Name", "Port", "Speed", "Phone", "Modem", "Timeout", "Waiting", "Active"});
  const auto rows = session.rows("select * from Stations order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    table.add({rows->get("Id"), rows->get("Name"), rows->get("ComPort").toInt32() + 1, rows->get("ComSpeed"),
               rows->get("Phone"), rows->get("ModemIniFile"), rows->get("TimeoutDelay"),
               rows->get("WaitingDelay"), rows->get("Active")});
  }
  table.print(std::cout, json);
}

void addFieldOptions(CLI::App& command, StationOptions& options) {
  command.add_option("--port", options.port, "Serial port, counted from 1");
  command.add_option("--speed", options.speed, "Line speed: 4800, 9600, 19200 or 38400 bit/s");
  command.add_option("--phone", options.phone, "Telephone number of a modem line");
  command.add_option("--modem", options.modem, "Modem initialisation file");
  command.add_option("--timeout", options.timeout, "Time-out of the line in ms");
  command.add_option("--waiting", options.waiting, "Waiting delay of the line in ms");
  command.add_flag("--inactive", options.inactive, "The line is not in use: nothing is sent to it");
}

}  // namespace

void addStationCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("station", "Communication lines")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a station");
  auto added = std::make_shared<StationOptions>();
  add->add_option("NAME", added->name, "Name of the new station")->required();
  addFieldOptions(*add, *added);
  add->footer("Example:\n  voxa station add Annex --port 2 --speed 9600");
  add->callback([&session, added] { addStation(session, *added); });

  auto* list = group->add_subcommand("list", "List the stations");
  auto json = std::make_shared<bool>(false);
  list->add_flag("--json", *json, "As a JSON array");
  list->footer("Example:\n  voxa station list --json");
  list->callback([&session, json] { listStations(session, *json); });

  auto* set = group->add_subcommand("set", "Change a station");
  auto changed = std::make_shared<StationOptions>();
  set->add_option("NAME", changed->name, "The station")->required();
  set->add_option("--name", changed->newName, "Its new name");
  addFieldOptions(*set, *changed);
  set->add_flag("--active", changed->active, "The line is in use")->excludes("--inactive");
  set->footer("Example:\n  voxa station set Annex --name \"Annex building\" --inactive");
  set->callback([&session, changed] { setStation(session, *changed); });

  auto* speed = group->add_subcommand("speed", "Switch the controllers of a line to another line speed");
  auto name = std::make_shared<std::string>();
  auto bits = std::make_shared<std::string>();
  speed->add_option("NAME", *name, "The station")->required();
  speed->add_option("BITS", *bits, "4800, 9600, 19200 or 38400 bit/s")->required();
  speed->footer("Example:\n  voxa station speed Annex 19200");
  speed->callback([&session, name, bits] { changeSpeed(session, *name, *bits); });
}

}  // namespace voxa::cli
