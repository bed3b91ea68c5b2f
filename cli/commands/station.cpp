// voxa station: the communication lines.

#include <iostream>

#include "changed_doors.h"
#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/stations.h"

namespace voxa::cli {

namespace {

struct StationOptions {
  std::string station;  // that is changed
  StationTexts texts;
  bool active = false;
  bool inactive = false;

  [[nodiscard]] StationTexts read() const {
    StationTexts all = texts;
    if (active || inactive) all.active = active;
    return all;
  }
};

void addStation(Session& session, const StationOptions& options) {
  session.openForSending();
  const AddedStation added = voxa::addStation(session.library(), options.read());
  std::cout << "Station " << added.id << ": " << *options.texts.name << " on port " << added.port << '\n';
}

const std::vector<std::string> columns = {"Id",    "Name",    "Port",    "Speed",  "Phone",
                                          "Modem", "Timeout", "Waiting", "Active", "Readers"};

std::vector<Cell> cellsOf(const StationRow& station) {
  return {station.id,    station.name,    station.port,    station.speed,  station.phone,
          station.modem, station.timeout, station.waiting, station.active, station.readers};
}

void listStations(Session& session, bool json) {
  session.open();
  TableOutput table(columns);
  for (const StationRow& station : voxa::listStations(session.library())) table.add(cellsOf(station));
  table.print(std::cout, json);
}

struct RemovalOptions {
  std::string station, moveTo;
  bool gone = false;
};

void remove(Session& session, const RemovalOptions& options) {
  session.openForSending();
  const DeletedStation deleted =
      deleteStation(session.library(), options.station, options.moveTo, options.gone);
  for (const std::string& thing : deleted.moved) std::cout << "Moved: " << thing << '\n';
  showChangedDoors(session, deleted.doors);
}

void addNaming(Command& group, Session& session) {
  auto* showing = group.add_subcommand("show", "Show a station");
  auto shown = std::make_shared<std::pair<std::string, bool>>();
  showing->add_option("NAME", shown->first, "Name or number of the station")->required();
  showing->add_flag("--json", shown->second, "As a JSON object");
  showing->footer("Examples:\n  voxa station show Annex\n  voxa station show Local --json");
  showing->callback([&session, shown] {
    session.open();
    printOne(std::cout, columns, cellsOf(findStation(session.library(), shown->first)), shown->second);
  });

  auto* rename = group.add_subcommand("rename", "Give a station another name");
  auto renamed = std::make_shared<StationOptions>();
  rename->add_option("NAME", renamed->station, "Name or number of the station")->required();
  rename->add_option("NEW", renamed->texts.name, "Its new name")->required();
  rename->footer(
      "The transactions in the journal keep the name that they were read with.\n"
      "Examples:\n  voxa station rename Annex \"Annex building\"\n  voxa station rename Local Main");
  rename->callback([&session, renamed] {
    session.openForSending();
    changeStation(session.library(), renamed->station, renamed->texts);
  });

  auto* deleting = group.add_subcommand("delete", "Delete a station");
  auto deleted = std::make_shared<RemovalOptions>();
  deleting->add_option("NAME", deleted->station, "Name or number of the station")->required();
  deleting->add_option("--move-to", deleted->moveTo,
                       "The station that its readers, lift outputs and alarms go to, at the same addresses");
  deleting->add_flag("--gone", deleted->gone,
                     "Its controllers are gone for good: they are not asked to erase their cards");
  deleting->footer(
      "Its controllers erase their cards at once, and have to answer.\n"
      "Examples:\n  voxa station delete Spare\n  voxa station delete Annex --move-to Local");
  deleting->callback([&session, deleted] { remove(session, *deleted); });
}

void addFieldOptions(Command& command, StationOptions& options) {
  command.add_option("--port", options.texts.port, "Serial port, counted from 1");
  command.add_option("--speed", options.texts.speed, "Line speed: 4800, 9600, 19200 or 38400 bit/s");
  command.add_option("--phone", options.texts.phone, "Telephone number of a modem line");
  command.add_option("--modem", options.texts.modem, "Modem initialisation file");
  command.add_option("--timeout", options.texts.timeout, "Time-out of the line in ms");
  command.add_option("--waiting", options.texts.waiting, "Waiting delay of the line in ms");
  command.add_flag("--inactive", options.inactive, "The line is not in use: nothing is sent to it");
}

}  // namespace

void addStationCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("station", "Communication lines")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a station");
  auto added = std::make_shared<StationOptions>();
  add->add_option("NAME", added->texts.name, "Name of the new station")->required();
  addFieldOptions(*add, *added);
  add->footer(
      "Examples:\n  voxa station add Annex --port 2 --speed 9600\n"
      "  voxa station add Depot --phone 0123456789 --modem hayes.ini");
  add->callback([&session, added] { addStation(session, *added); });

  addListCommand(*group, session, "list", "List the stations", "voxa station list", listStations);

  auto* set = group->add_subcommand("set", "Change a station");
  auto changed = std::make_shared<StationOptions>();
  set->add_option("NAME", changed->station, "Name or number of the station")->required();
  set->add_option("--name", changed->texts.name, "Its new name");
  addFieldOptions(*set, *changed);
  set->add_flag("--active", changed->active, "The line is in use")->excludes("--inactive");
  set->footer("Examples:\n  voxa station set Annex --inactive\n  voxa station set Depot --phone 0123456780");
  set->callback([&session, changed] {
    session.openForSending();
    changeStation(session.library(), changed->station, changed->read());
  });

  addNaming(*group, session);

  const auto addCall = [&](const char* word, const char* help,
                           void (*call)(Installation&, const std::string&), const char* done) {
    auto* command = group->add_subcommand(word, help);
    auto station = std::make_shared<std::string>();
    command->add_option("NAME", *station, "A station with a telephone number")->required();
    const std::string example = std::string("\n  voxa station ") + word;
    command->footer("Examples:" + example + " Depot" + example + " \"Depot, yard\"");
    command->callback([&session, station, call, done] {
      session.openForSending();
      call(session.library(), *station);
      std::cout << *station << done << '\n';
    });
  };
  addCall("connect", "Call a station; it is in use until it is disconnected", connectStation,
          " is connected");
  addCall("disconnect", "Hang up a station", disconnectStation, " is hung up");

  auto* speed = group->add_subcommand("speed", "Switch the controllers of a line to another line speed");
  auto name = std::make_shared<std::string>();
  auto bits = std::make_shared<std::string>();
  speed->add_option("NAME", *name, "Name or number of the station")->required();
  speed->add_option("BITS", *bits, "4800, 9600, 19200 or 38400 bit/s")->required();
  speed->footer("Examples:\n  voxa station speed Annex 19200\n  voxa station speed Local 4800");
  speed->callback([&session, name, bits] {
    session.openForSending();
    changeLineSpeed(session.library(), *name, *bits);
  });
}

}  // namespace voxa::cli
