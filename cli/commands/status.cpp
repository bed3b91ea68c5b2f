// voxa status: which controllers answer.

#include <iostream>

#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/controllers.h"
#include "work/line_test.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

void tellSuspects(Session& session) {
  std::vector<std::string> names;
  for (const SuspectController& suspect : controllersAtStart(session.library()))
    names.push_back(suspect.name + ": its clock shows " + suspect.clock.toText());
  if (names.empty()) return;
  std::cerr << "status: these controllers were without power, or may have been replaced; 'voxa controller "
               "check' looks closer:"
            << eachOnALine(names) << '\n';
  session.leaveToPerson();
}

void showStatus(Session& session, bool json) {
  session.openForSending();
  const LineTest test = testLines(session.library(), {});
  session.show(test.notices);
  TableOutput table({"Station", "Controller", "Readers", "Answers", "Clock"});
  bool allAnswer = true;
  for (const ControllerState& state : listControllers(session.library())) {
    table.add({state.station, state.place.address, state.readers, state.answers, state.clock});
    allAnswer = allAnswer && (session.settings.opening.inhibit || state.answers == Value(true));
  }
  table.print(std::cout, json);
  tellSuspects(session);
  if (allAnswer) return;
  std::string failures = test.said;
  // The driver's own words name those that did not answer, and nobody that it says nothing of.
  for (const Report::Controller& controller : test.silent) {
    if (failures.find(controller.name) == std::string::npos) failures += "\r\n" + controller.name;
  }
  throw Leftover("msgComErr", Value(failures));
}

}  // namespace

void addStatusCommand(Command& app, Session& session) {
  addListCommand(app, session, "status", "Ask every controller of the active stations for its clock",
                 "voxa status", showStatus);
}

}  // namespace voxa::cli
