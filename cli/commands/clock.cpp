// voxa clock: the controllers' clocks, by which they date transactions and judge times.

#include <iostream>

#include "comm/com.h"
#include "commands.h"
#include "component.h"
#include "line_question.h"
#include "output/command_line.h"
#include "session.h"
#include "work/line_commands.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

void setAll(Session& session, const ComponentChoice& choice) {
  session.openForSending();
  const Component component = chosen(session, choice);
  const std::optional<LineTest> test = testedLines(session, component);
  if (!test) throw Refusal("not every controller answers: no clock was set (see voxa status)");
  setClocks(session.library(), component, test->silent);
  if (!test->silent.empty() && !session.com().inhibitCom)
    throw Leftover("the clocks of these controllers are not set, as they do not answer:" +
                   eachOnALine(namesOf(test->silent)));
  std::cout << "The clocks are set\n";
}

}  // namespace

void addClockCommand(Command& app, Session& session) {
  auto* clock = app.add_subcommand("clock", "Set the controllers' clocks to that of this computer");
  auto choice = std::make_shared<ComponentChoice>();
  addComponentOptions(*clock, *choice);
  clock->footer(
      "With --yes those of controllers that do not answer are left, and named.\n"
      "Examples:\n  voxa clock\n  voxa clock --station Local");
  clock->callback([&session, choice] { setAll(session, *choice); });
}

}  // namespace voxa::cli
