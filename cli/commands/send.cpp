// voxa command and voxa log: what goes over the line.

#include <functional>
#include <iostream>
#include <optional>

#include "commands.h"
#include "component.h"
#include "output/command_line.h"
#include "output/hidden_pins.h"
#include "output/table_output.h"
#include "session.h"
#include "work/communication_log.h"
#include "work/line_commands.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

void sendCommand(Session& session, const std::string& text, const ComponentChoice& choice) {
  session.openForSending();
  const Report report = sendCommandLine(session.library(), chosen(session, choice), text);
  session.show(report);
  if (!report.failed()) std::cout << "Sent\n";
}

struct LogOptions {
  std::string tail;
  bool showPins = false;
  bool json = false;
};

void showLog(Session& session, const LogOptions& options) {
  session.open();
  const auto each = [&](const std::function<void(const std::string&)>& line) {
    std::optional<std::size_t> last;
    if (!options.tail.empty()) last = numberWithin("--tail", options.tail, 0, 32767);
    eachLogLine(session.library(), last,
                [&](const std::string& text) { line(options.showPins ? text : withoutPin(text)); });
  };
  if (!options.json) return each([](const std::string& line) { std::cout << line << '\n'; });
  printList(std::cout, {"Line"}, true,
            [&](const auto& row) { each([&](const std::string& line) { row({line}); }); });
}

}  // namespace

void addSendCommands(Command& app, Session& session) {
  auto* command = app.add_subcommand("command", "Send one command line to the controllers");
  auto text = std::make_shared<std::string>();
  auto choice = std::make_shared<ComponentChoice>();
  command->add_option("TEXT", *text, "The line")->required();
  addComponentOptions(*command, *choice);
  command->footer(
      "Examples:\n  voxa command 31020800120013001700 --station Local\n"
      "  voxa command 31020800120013001700 --reader \"Front door\"");
  command->callback([&session, text, choice] { sendCommand(session, *text, *choice); });

  auto* log = app.add_subcommand("log", "Show the communication log");
  auto options = std::make_shared<LogOptions>();
  log->add_option("--tail", options->tail, "Only so many lines at its end");
  log->add_flag("--show-pins", options->showPins, "With the personal codes that were sent");
  log->add_flag("--json", options->json, "As a JSON array");
  log->footer("Examples:\n  voxa log --tail 20\n  voxa log --json");
  log->callback([&session, options] { showLog(session, *options); });
}

}  // namespace voxa::cli
