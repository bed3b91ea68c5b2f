// voxa clock: the controllers' clocks, by which they date transactions and judge times.

#include <iostream>

#include "commands.h"
#include "component.h"
#include "output/command_line.h"
#include "session.h"
#include "work/line_commands.h"
#include "work/line_test.h"

namespace voxa::cli {

namespace {

void setAll(Session& session, const ComponentChoice& choice) {
  session.openForSending();
  const Component component = chosen(session, choice);
  const LineTest test = testLines(session.library(), component);
  session.show(test.notices);
  setClocks(session.library(), component, test);
  std::cout << "The clocks are set\n";
}

}  // namespace

void addClockCommand(Command& app, Session& session) {
  auto* clock = app.add_subcommand("clock", "Set the controllers' clocks to that of this computer");
  auto choice = std::make_shared<ComponentChoice>();
  addComponentOptions(*clock, *choice);
  clock->footer("Examples:\n  voxa clock\n  voxa clock --station Local");
  clock->callback([&session, choice] { setAll(session, *choice); });
}

}  // namespace voxa::cli
