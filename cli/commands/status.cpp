// voxa status: which controllers answer.

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include "app/qdb.h"
#include "comm/com.h"
#include "commands.h"
#include "download.h"
#include "output/table_output.h"
#include "session.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct ControllerState {
  std::string station;
  std::string readers;
  Value answers;  // Null: nobody asked it
  Value clock;
};

using Controllers = std::map<ControllerPlace, ControllerState>;

Controllers controllersOfActiveStations(Session& session) {
  Controllers controllers;
  const auto readers = session.rows(
      "select StationId, ControllerAddress, Readers.Name as Reader, Stations.Name as Station "
      "from Readers inner join Stations on Readers.StationId = Stations.Id "
      "where Stations.Active = true order by Position");
  for (; !readers->eof(); readers->moveNext()) {
    ControllerState& state =
        controllers[{readers->get("StationId").toInt16(), readers->get("ControllerAddress").toInt16()}];
    state.station = readers->get("Station").toText();
    state.readers += (state.readers.empty() ? "" : ", ") + readers->get("Reader").toText();
  }
  return controllers;
}

void addAnswers(Session& session, Controllers& controllers) {
  const auto rows = session.rows("select * from ComStatus");
  for (; !rows->eof(); rows->moveNext()) {
    const auto found = controllers.find({rows->get("StationID").toInt16(), rows->get("CtrAddr").toInt16()});
    if (found == controllers.end()) continue;
    const bool answers = rows->get("Status").toInt16() == 1;
    found->second.answers = answers;
    if (answers) found->second.clock = rows->get("Date");
  }
}

void showStatus(Session& session, bool json) {
  session.openForSending();
  session.com().TestCom();
  Controllers controllers = controllersOfActiveStations(session);
  addAnswers(session, controllers);
  TableOutput table({"Station", "Controller", "Readers", "Answers", "Clock"});
  bool allAnswer = true;
  for (const auto& [place, state] : controllers) {
    table.add({state.station, place.address, state.readers, state.answers, state.clock});
    allAnswer = allAnswer && (session.settings.opening.inhibit || state.answers == Value(true));
  }
  table.print(std::cout, json);
  std::string failures = session.com().popErrorList();
  // The driver's own words name those that did not answer, and nobody that it says nothing of.
  for (const std::string& name : silentControllers(session, {})) {
    if (failures.find(name) == std::string::npos) failures += "\r\n" + name;
  }
  if (!allAnswer) throw Leftover("msgComErr", Value(failures));
}

}  // namespace

void addStatusCommand(CLI::App& app, Session& session) {
  auto* status = app.add_subcommand("status", "Ask every controller of the active stations for its clock");
  auto json = std::make_shared<bool>(false);
  status->add_flag("--json", *json, "As a JSON array");
  status->footer("Example:\n  voxa status");
  status->callback([&session, json] { showStatus(session, *json); });
}

}  // namespace voxa::cli
