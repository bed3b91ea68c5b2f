// voxa command and voxa log: what goes over the line.

#include <CLI/CLI.hpp>
#include <deque>
#include <iostream>

#include "comm/com.h"
#include "commands.h"
#include "component.h"
#include "files/seq_file.h"
#include "output/hidden_pins.h"
#include "output/table_output.h"
#include "platform/files.h"
#include "session.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

void sendCommand(Session& session, const std::string& text, const ComponentChoice& choice) {
  session.openForSending();
  if (text.empty()) throw Refusal("an empty command is not sent");
  if (text.find_first_of("\r\n") != std::string::npos) throw Refusal("a command is one line");
  const Component component = chosen(session, choice);
  if (session.com().sendCommand(text, component.type, component.name) == 0) std::cout << "Sent\n";
}

struct LogOptions {
  std::string tail;
  bool showPins = false;
  bool json = false;
};

/// Hands each line of the log to `line`, or the last ones.
void eachLogLine(Session& session, const LogOptions& options,
                 const std::function<void(const std::string&)>& line) {
  SeqFile log(session.library());
  log.Name(session.com().logFileName);
  if (!files::exists(log.Name())) return;
  const bool all = options.tail.empty();
  const auto most = all ? 0 : static_cast<std::size_t>(numberWithin("--tail", options.tail, 0, 32767));
  std::deque<std::string> last;
  log.fopen("r");
  while (!log.fEOF()) {
    std::string text = log.flineInput();
    if (!options.showPins) text = withoutPin(std::move(text));
    if (all) {
      line(text);
      continue;
    }
    last.push_back(std::move(text));
    if (last.size() > most) last.pop_front();
  }
  log.fclose();
  for (const std::string& text : last) line(text);
}

void showLog(Session& session, const LogOptions& options) {
  session.open();
  if (!options.json) {
    return eachLogLine(session, options, [](const std::string& line) { std::cout << line << '\n'; });
  }
  printList(std::cout, {"Line"}, true, [&](const auto& row) {
    eachLogLine(session, options, [&](const std::string& line) { row({line}); });
  });
}

}  // namespace

void addSendCommands(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand("command", "Send one command line to the controllers");
  auto text = std::make_shared<std::string>();
  auto choice = std::make_shared<ComponentChoice>();
  command->add_option("TEXT", *text, "The line")->required();
  addComponentOptions(*command, *choice);
  command->footer("Example:\n  voxa command 31020800120013001700 --station Local");
  command->callback([&session, text, choice] { sendCommand(session, *text, *choice); });

  auto* log = app.add_subcommand("log", "Show the communication log");
  auto options = std::make_shared<LogOptions>();
  log->add_option("--tail", options->tail, "Only so many lines at its end");
  log->add_flag("--show-pins", options->showPins, "With the personal codes that were sent");
  log->add_flag("--json", options->json, "As a JSON array");
  log->footer("Example:\n  voxa log --tail 20");
  log->callback([&session, options] { showLog(session, *options); });
}

}  // namespace voxa::cli
