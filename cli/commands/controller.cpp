// voxa controller: the controllers themselves.

#include <iostream>

#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/controllers.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct ReplacedOptions {
  std::string station;
  std::string address;
  bool used = false;
};

void listControllers(Session& session, bool json) {
  session.openForSending();
  const ControllerOverviews all = overviewControllers(session.library());
  session.show(all.notices);
  TableOutput table({"Station", "Controller", "Readers", "State", "Answers", "Clock off", "Cards", "Missing",
                     "In doubt", "Last contact"});
  for (const ControllerOverview& each : all.controllers) {
    const bool gone = each.state == ControllerOverview::State::retired;
    const auto count = [&](auto number) { return gone ? Value() : Value(static_cast<std::int32_t>(number)); };
    // For a person; minutes since the year of its start say nothing.
    const Value off = each.clockAtStart && !json ? Value("at start") : each.deviation;
    table.add({each.station, each.place.address, each.readers, textOf(each.state), each.answers, off,
               count(each.cards), count(each.missing), count(each.doubt), each.lastContact});
  }
  table.print(std::cout, json);
}

void checkThem(Session& session) {
  session.openForSending();
  const ControllerCheck check = checkControllers(session.library());
  session.show(check.notices);
  std::string text;
  for (const SuspectController& suspect : check.suspects) {
    text += "\n  " + suspect.name + ": its clock shows " + suspect.clock.toText() +
            (suspect.memoryEmpty ? ", and its memory is empty: it was probably replaced"
                                 : ": it was without power, or was replaced");
  }
  if (!text.empty()) {
    text =
        "these controllers may be others than they were. Of one that was replaced say so with 'voxa "
        "controller "
        "replaced', then 'voxa download' sends it everything; 'voxa clock' sets the clocks:" +
        text;
  }
  if (!check.silent.empty())
    text += (text.empty() ? "" : "\n") + std::string("these controllers do not answer:") +
            eachOnALine(check.silent);
  if (!text.empty()) throw Leftover(text);
  std::cout
      << "Every controller of the lines in use answers, and none was replaced as far as its clock tells\n";
}

}  // namespace

void addControllerCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("controller", "What is known of the controllers")->require_subcommand(1);

  addListCommand(
      *group, session, "list",
      "List the controllers: who answers, minutes that the clock is off, cards that are held, what is "
      "missing or in doubt",
      "voxa controller list", listControllers);

  auto* replaced = group->add_subcommand("replaced", "Say that another controller was put in a place");
  auto options = std::make_shared<ReplacedOptions>();
  replaced->add_option("--station", options->station, "Its station")->required();
  replaced->add_option("--address", options->address, "Its address on the line, 1 to 16")->required();
  replaced->add_flag(
      "--used", options->used,
      "It was at work elsewhere, and may hold any cards: all that it is not to have are erased");
  replaced->footer(
      "Nothing is sent: 'voxa plan' tells what it needs, 'voxa download' sends it.\n"
      "Examples:\n  voxa controller replaced --station Local --address 3\n"
      "  voxa controller replaced --station Annex --address 1 --used");
  replaced->callback([&session, options] {
    session.openForSending();
    noteReplaced(session.library(), options->station, options->address, options->used);
    std::cout << "Nothing of what was sent before counts any more: 'voxa download' sends it everything\n";
  });

  auto* check = group->add_subcommand("check", "Look for controllers that were replaced or lost their power");
  check->footer("Examples:\n  voxa controller check\n  voxa --dir plant controller check");
  check->callback([&session] { checkThem(session); });
}

}  // namespace voxa::cli
