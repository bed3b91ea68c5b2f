// voxa station: the communication lines.

#include <iostream>

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

void listStations(Session& session, bool json) {
  session.open();
  TableOutput table({"Id", "Name", "Port", "Speed", "Phone", "Modem", "Timeout", "Waiting", "Active"});
  for (const StationRow& station : voxa::listStations(session.library())) {
    table.add({station.id, station.name, station.port, station.speed, station.phone, station.modem,
               station.timeout, station.waiting, station.active});
  }
  table.print(std::cout, json);
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
  add->footer("Example:\n  voxa station add Annex --port 2 --speed 9600");
  add->callback([&session, added] { addStation(session, *added); });

  addListCommand(*group, session, "list", "List the stations", "voxa station list --json", listStations);

  auto* set = group->add_subcommand("set", "Change a station");
  auto changed = std::make_shared<StationOptions>();
  set->add_option("NAME", changed->station, "The station")->required();
  set->add_option("--name", changed->texts.name, "Its new name");
  addFieldOptions(*set, *changed);
  set->add_flag("--active", changed->active, "The line is in use")->excludes("--inactive");
  set->footer("Example:\n  voxa station set Annex --name \"Annex building\" --inactive");
  set->callback([&session, changed] {
    session.openForSending();
    changeStation(session.library(), changed->station, changed->read());
  });

  const auto addCall = [&](const char* word, const char* help,
                           void (*call)(Installation&, const std::string&), const char* done) {
    auto* command = group->add_subcommand(word, help);
    auto station = std::make_shared<std::string>();
    command->add_option("NAME", *station, "A station with a telephone number")->required();
    command->footer(std::string("Example:\n  voxa station ") + word + " Annex");
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
  speed->add_option("NAME", *name, "The station")->required();
  speed->add_option("BITS", *bits, "4800, 9600, 19200 or 38400 bit/s")->required();
  speed->footer("Example:\n  voxa station speed Annex 19200");
  speed->callback([&session, name, bits] {
    session.openForSending();
    changeLineSpeed(session.library(), *name, *bits);
  });
}

}  // namespace voxa::cli
