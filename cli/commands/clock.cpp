// voxa clock: the controllers' clocks, by which they date transactions and judge times.

#include <CLI/CLI.hpp>
#include <iostream>

#include "comm/com.h"
#include "commands.h"
#include "component.h"
#include "download.h"
#include "session.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

void setClocks(Session& session, const ComponentChoice& choice) {
  session.openForSending();
  Com& com = session.com();
  const Component component = chosen(session, choice);
  // A controller that is passed over keeps its wrong clock without a word, so none is.
  const bool allAnswer = com.TestCom(component.type, component.name);
  const std::string silent = eachOnALine(silentControllers(session, component));
  if ((!allAnswer || !silent.empty()) && !com.inhibitCom) {
    throw Refusal("not every controller answers: no clock was set (see voxa status)" + silent);
  }
  if (com.sendToComp(CmSendDate, component.type, component.name) != 0) {
    throw Refusal("msgCantSendDate", com.popErrorList());
  }
  std::cout << "The clocks are set\n";
}

}  // namespace

void addClockCommand(CLI::App& app, Session& session) {
  auto* clock = app.add_subcommand("clock", "Set the controllers' clocks to that of this computer");
  auto choice = std::make_shared<ComponentChoice>();
  addComponentOptions(*clock, *choice);
  clock->footer("Example:\n  voxa clock --station Local");
  clock->callback([&session, choice] { setClocks(session, *choice); });
}

}  // namespace voxa::cli
