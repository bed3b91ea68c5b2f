// voxa read: the transactions of the controllers on their way into the journal.

#include <iostream>

#include "commands.h"
#include "component.h"
#include "line_question.h"
#include "output/command_line.h"
#include "output/progress.h"
#include "session.h"
#include "work/reading.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct ReadOptions {
  ComponentChoice component;
  bool all = false;
};

/// A Leftover with what failed. indent: of the further lines of a reason.
void conclude(const Report& report, const std::string& indent) {
  if (!report.broken) return;
  std::string failures;
  for (const Report::Controller& controller : report.controllers) {
    if (controller.outcome != Outcome::failed) continue;
    std::string reason = controller.reason;
    for (std::size_t at = 0; (at = reason.find("\r\n", at)) != std::string::npos;)
      reason.replace(at, 2, "\n" + indent);
    failures += "\n  " + controller.name + ": " + reason;
  }
  throw Leftover("not every controller was read and cleared:" + failures);
}

void readEach(Session& session) {
  Report report;
  {
    Progress progress;
    report = readAll(session.library(), &progress);
  }
  session.show(report);
  conclude(report, "    ");
}

void readOne(Session& session, const std::string& reader) {
  LineTest test;
  if (!readerAnswers(session, reader, test)) {
    throw Refusal("nothing was read: the controller does not answer, or reading was aborted" + test.said);
  }
  session.show(readReader(session.library(), reader));
}

void read(Session& session, const ReadOptions& options) {
  session.openForSending();
  const bool all = options.component.station.empty() && options.component.reader.empty();
  const Component component = all ? Component{} : chosen(session, options.component);
  const std::int32_t before = journalSize(session.library());
  const auto tell = [&] {
    std::cout << journalSize(session.library()) - before << " transactions added to the journal\n";
  };
  try {
    if (all) {
      readEach(session);
    } else if (component.type == CTStation) {
      conclude(readStation(session.library(), component.name), "  ");
    } else {
      readOne(session, component.name);
    }
  } catch (...) {
    tell();
    throw;
  }
  tell();
}

}  // namespace

void addReadCommand(Command& app, Session& session) {
  auto* command =
      app.add_subcommand("read", "Read the controllers' transactions into the journal and clear them");
  auto options = std::make_shared<ReadOptions>();
  addComponentOptions(*command, options->component);
  command->add_flag("--all", options->all, "Every controller of every station, as without an option")
      ->excludes("--station")
      ->excludes("--reader");
  command->footer(
      "Each controller is read on its own. Of all of them, those behind a telephone line are dialled, and "
      "Log.txt says\nwhat happened.\nExamples:\n  voxa read --all\n  voxa read --station Annex");
  command->callback([&session, options] { read(session, *options); });
}

}  // namespace voxa::cli
