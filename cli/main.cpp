// The command "voxa": the caller application of a person at a terminal.

#include <CLI/CLI.hpp>

#include "commands/commands.h"
#include "commands/session.h"
#include "output/command_line.h"
#include "output/terminal_filter.h"
#include "platform/ui/console_prompts.h"
#include "work/refusal.h"

namespace {

void addGlobalOptions(CLI::App& app, voxa::cli::Settings& settings) {
  app.add_option("--dir", settings.opening.folder, "Folder of the installation")->capture_default_str();
  app.add_flag("--yes", settings.yes, "Answer questions with Yes, and go on without silent controllers");
  app.add_option("--answer", settings.answers, "Answer boxes that have this button with it")
      ->allow_extra_args(false)
      ->check(CLI::IsMember({"abort", "retry", "ignore", "yes", "no", "cancel"}, CLI::ignore_case));
  app.add_flag("--inhibit", settings.opening.inhibit, "Call no driver, as if every send succeeded");
  app.add_flag_callback(
      "--no-log", [&settings] { settings.opening.log = false; }, "Write no communication log (COM.LOG)");
  app.add_flag("--trust-group", settings.opening.trustGroup,
               "Also work in a folder that its group can write");
  app.add_flag("--four-zones", settings.opening.fourZones, "The controllers work with four intervals a day");
}

/// The command as it was called, "voxa station add".
std::string calledCommand(const CLI::App& app) {
  std::string name = app.get_name();
  for (const CLI::App* command = &app; !command->get_subcommands().empty();) {
    command = command->get_subcommands().front();
    name += " " + command->get_name();
  }
  return name;
}

/// What a caller learns from the exit status; the same in all commands.
enum Status : int {
  done = 0,
  failed = 1,
  misused = 2,
  left = 3  ///< done, with something left that needs a person
};

/// The deepest command that was named.
const CLI::App& deepest(const CLI::App& app) {
  const CLI::App* command = &app;
  while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
  return *command;
}

/// Tells what is wrong with the command line; the commands there are, when none of them was named.
int explainUsage(const CLI::App& app, const CLI::ParseError& problem) {
  if (app.exit(problem) == 0) return done;
  const CLI::App& at = deepest(app);
  const auto known = at.get_subcommands([](const CLI::App* /*command*/) { return true; });
  if (known.empty()) return misused;
  std::cerr << "Commands of " << calledCommand(app) << ":";
  for (const CLI::App* command : known) std::cerr << ' ' << command->get_name();
  std::cerr << '\n';
  return misused;
}

int run(CLI::App& app, voxa::cli::Session& session, int argc, char** argv) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    return explainUsage(app, problem);
  } catch (const voxa::Leftover&) {
    session.explainFailure(calledCommand(app));
    return left;
  } catch (...) {
    session.explainFailure(calledCommand(app));
    return failed;
  }
  if (session.failed()) return failed;
  return session.left() ? left : done;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Door access control: programs of time, their download to the controllers", "voxa");
  try {
    const voxa::cli::TerminalFilter output(std::cout, 1);
    const voxa::cli::TerminalFilter errors(std::cerr, 2);
    voxa::cli::Session session;
    app.set_version_flag("--version", "voxa " VOXA_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(
        "Exit status: 0 done, 1 failed, 2 wrong usage, 3 done, with something left that needs a person.");
    addGlobalOptions(app, session.settings);
    voxa::cli::Command commands(app);
    voxa::cli::addInitCommand(commands, session);
    voxa::cli::addStationCommands(commands, session);
    voxa::cli::addReaderCommands(commands, session);
    voxa::cli::addDailyCommands(commands, session);
    voxa::cli::addWeeklyCommands(commands, session);
    voxa::cli::addHolidayCommands(commands, session);
    voxa::cli::addBadgeCommands(commands, session);
    voxa::cli::addGroupCommands(commands, session);
    voxa::cli::addCardCommands(commands, session);
    voxa::cli::addAccessCommands(commands, session);
    voxa::cli::addLiftCommands(commands, session);
    voxa::cli::addAlarmCommands(commands, session);
    voxa::cli::addImportCommands(commands, session);
    voxa::cli::addStatusCommand(commands, session);
    voxa::cli::addControllerCommands(commands, session);
    voxa::cli::addClockCommand(commands, session);
    voxa::cli::addPlanCommand(commands, session);
    voxa::cli::addDownloadCommands(commands, session);
    voxa::cli::addReadCommand(commands, session);
    voxa::cli::addJournalCommand(commands, session);
    voxa::cli::addReportCommand(commands, session);
    voxa::cli::addSendCommands(commands, session);
    voxa::cli::addDatabaseCommands(commands, session);
    voxa::cli::addSimulatorCommands(commands, session);
    voxa::cli::addDemoCommand(commands, session);
    const int status = run(app, session, argc, argv);
    std::cout.flush();
    if (std::cout || !voxa::ConsolePrompts::hasOutput()) return status;
    std::cerr << "voxa: the output cannot be written\n";
    return failed;
  } catch (const std::exception& failure) {
    std::cerr << "voxa: " << failure.what() << '\n';
    return failed;
  }
}
