// voxa reader: the doors.

#include "comm/reader.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "app/qdb.h"
#include "comm/station.h"
#include "commands.h"
#include "component.h"
#include "output/table_output.h"
#include "session.h"
#include "work/links.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct ReaderOptions {
  std::string name, station, address, position;
  std::string type = "QSX3";
};

void addReader(Session& session, const ReaderOptions& options) {
  session.openForSending();
  const auto station = stationNamed(session.library(), options.station);
  const std::int16_t stationId = station->get("Id").toInt16();
  const std::int16_t address = numberWithin("the controller's address", options.address, 1, 16);
  const std::int16_t position = numberWithin("the position", options.position, 1, 4);
  const std::int16_t id = session.qdb().Readers().getFreeId();
  if (id == -1) throw Refusal("the installation holds all the readers it can (998)");
  const bool newController = !isKnownController(session.library(), stationId, address, id);
  Transaction transaction(session.library().engine(), session.qdb().database());
  const auto rows = session.rows("select * from Readers");
  rows->addNew();
  rows->set("Id", id);
  rows->set("Name", checkedPlaceName(options.name));
  rows->set("StationId", stationId);
  rows->set("ControllerType", options.type);
  rows->set("ControllerAddress", address);
  rows->set("Position", position);
  storeRow(session.library(), *rows, "Readers", "reader");
  if (newController) markProgramsForNewController(session.library());
  transaction.commit();
  // The driver learns from the station's file which controllers are on the line.
  session.qdb().Stations().createIniFile(stationId);
  linkNewReader(session.library(), id);
  std::cout << "Reader " << id << ": " << options.name << '\n';
  if (newController) {
    std::cout << "Its controller is new: 'voxa download all' sends it the programs and holidays\n";
  }
}

void listReaders(Session& session, bool json) {
  session.open();
  TableOutput table({"Id", "Name", "Station", "Address", "Position", "Type"});
  const auto rows = session.rows(
      "select Readers.Id, Readers.Name, Stations.Name as Station, ControllerAddress, Position, "
      "ControllerType from Readers inner join Stations on Readers.StationId = Stations.Id "
      "order by Readers.Id");
  for (; !rows->eof(); rows->moveNext()) {
    std::vector<Value> cells;
    for (std::size_t i = 0; i < rows->fieldCount(); ++i) cells.push_back(rows->get(i));
    table.add(std::move(cells));
  }
  table.print(std::cout, json);
}

}  // namespace

void addReaderCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("reader", "Doors")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a reader, which the default access group opens always");
  auto options = std::make_shared<ReaderOptions>();
  add->add_option("NAME", options->name, "Name of the new reader")->required();
  add->add_option("--station", options->station, "Its station")->required();
  add->add_option("--address", options->address, "Address of its controller on the line, 1 to 16")
      ->required();
  add->add_option("--position", options->position, "Its door on the controller, 1 to 4")->required();
  add->add_option("--type", options->type, "Type of its controller")
      ->check(CLI::IsMember({"QSX3", "VRMD1"}))
      ->capture_default_str();
  add->footer(
      "Positions 1 and 3, 2 and 4 are the two sides of one door: an access group that may pass one side may "
      "pass "
      "the\nother.\nExample:\n  voxa reader add \"Front door\" --station Local --address 1 --position 1");
  add->callback([&session, options] { addReader(session, *options); });

  auto* list = group->add_subcommand("list", "List the readers");
  auto json = std::make_shared<bool>(false);
  list->add_flag("--json", *json, "As a JSON array");
  list->footer("Example:\n  voxa reader list");
  list->callback([&session, json] { listReaders(session, *json); });
}

}  // namespace voxa::cli
