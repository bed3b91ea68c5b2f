#include "work/line_test.h"

#include <map>

#include "comm/com.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"

namespace voxa {

LineTest testLines(Installation& installation, const Component& component) {
  Com& com = installation.Com();
  LineTest found;
  const Com::Test test = com.test(component, into(found.notices));
  found.allAnswer = test.allAnswer;
  found.broken = test.broken;
  found.said = com.popErrorList();
  found.silent = silentControllers(installation, component);
  return found;
}

std::vector<Report::Controller> silentControllers(Installation& installation, const Component& component) {
  Com& com = installation.Com();
  std::vector<Report::Controller> silent;
  for (const ControllerPlace& place : com.notKnownToAnswer(component.type, component.name)) {
    silent.push_back({place, com.getName(place.station, place.address), Outcome::silent});
  }
  return silent;
}

void passOver(Installation& installation, const std::vector<Report::Controller>& silent) {
  for (const Report::Controller& controller : silent) {
    installation.Com().noteSilence(controller.place.station, controller.place.address);
  }
}

std::vector<ControllerState> listControllers(Installation& installation) {
  std::map<ControllerPlace, ControllerState> controllers;
  const auto readers = installation.database().openRecordset(
      "select StationId, ControllerAddress, Readers.Name as Reader, Stations.Name as Station "
      "from Readers inner join Stations on Readers.StationId = Stations.Id "
      "where Stations.Active = true order by Position");
  for (; !readers->eof(); readers->moveNext()) {
    const ControllerPlace place{readers->get("StationId").toInt16(),
                                readers->get("ControllerAddress").toInt16()};
    ControllerState& state = controllers[place];
    state.place = place;
    state.station = readers->get("Station").toText();
    state.readers.push_back(readers->get("Reader").toText());
  }
  const auto rows = installation.database().openRecordset("select * from ComStatus");
  for (; !rows->eof(); rows->moveNext()) {
    const auto found = controllers.find({rows->get("StationID").toInt16(), rows->get("CtrAddr").toInt16()});
    if (found == controllers.end()) continue;
    const bool answers = rows->get("Status").toInt16() == 1;
    found->second.answers = answers;
    if (answers) found->second.clock = rows->get("Date");
  }
  std::vector<ControllerState> states;
  states.reserve(controllers.size());
  for (auto& [place, state] : controllers) states.push_back(std::move(state));
  return states;
}

Component componentNamed(Installation& installation, const std::string& station, const std::string& reader) {
  if (!station.empty()) return {CTStation, stationNamed(installation, station)->get("Name").toText()};
  if (!reader.empty()) return {CTReader, readerNamed(installation, reader)->get("Name").toText()};
  if (installation.database().openRecordset("select Id from Stations where Active = true")->eof()) {
    throw Refusal("msgNoActiveStation", "");
  }
  return {};
}

}  // namespace voxa
