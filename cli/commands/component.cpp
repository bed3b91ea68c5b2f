#include "component.h"

#include <CLI/CLI.hpp>

#include "session.h"
#include "work/look_up.h"
#include "work/refusal.h"

namespace voxa::cli {

void addComponentOptions(CLI::App& command, ComponentChoice& choice) {
  auto* station = command.add_option("--station", choice.station, "Only the controllers of this station");
  command.add_option("--reader", choice.reader, "Only the controller of this reader")->excludes(station);
}

Component chosen(Session& session, const ComponentChoice& choice) {
  if (!choice.station.empty()) {
    return {CTStation, stationNamed(session.library(), choice.station)->get("Name").toText()};
  }
  if (!choice.reader.empty()) {
    return {CTReader, readerNamed(session.library(), choice.reader)->get("Name").toText()};
  }
  if (session.rows("select Id from Stations where Active = true")->eof()) {
    throw Refusal("msgNoActiveStation", "");
  }
  return {};
}

}  // namespace voxa::cli
