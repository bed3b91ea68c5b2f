// The command "voxa": the caller application of a person at a terminal.

#include <CLI/CLI.hpp>

#include "commands.h"
#include "installation.h"

namespace {

void addGlobalOptions(CLI::App& app, voxa::cli::Settings& settings) {
  app.add_option("--dir", settings.folder, "Folder of the installation")->capture_default_str();
  app.add_flag("--yes", settings.yes, "Answer questions with Yes, and go on without silent controllers");
  app.add_option("--answer", settings.answers, "Answer boxes that have this button with it")
      ->allow_extra_args(false)
      ->check(CLI::IsMember({"abort", "retry", "ignore", "yes", "no", "cancel"}, CLI::ignore_case));
  app.add_flag("--inhibit", settings.inhibit, "Call no driver, as if every send succeeded");
  app.add_flag("--no-log", settings.noLog, "Write no communication log (COM.LOG)");
  app.add_flag("--four-zones", settings.fourZones, "The controllers work with four intervals a day");
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

}  // namespace

int main(int argc, char** argv) {
  constexpr int failed = 1;
  constexpr int misused = 2;
  CLI::App app("Door access control: programs of time, their download to the controllers", "voxa");
  try {
    voxa::cli::Installation installation;
    app.require_subcommand(1);
    app.fallthrough();
    addGlobalOptions(app, installation.settings);
    voxa::cli::addInitCommand(app, installation);
    voxa::cli::addStationCommands(app, installation);
    voxa::cli::addReaderCommands(app, installation);
    voxa::cli::addDailyCommands(app, installation);
    voxa::cli::addWeeklyCommands(app, installation);
    voxa::cli::addHolidayCommands(app, installation);
    voxa::cli::addBadgeCommands(app, installation);
    voxa::cli::addGroupCommands(app, installation);
    voxa::cli::addCardCommands(app, installation);
    voxa::cli::addLiftCommands(app, installation);
    voxa::cli::addImportCommands(app, installation);
    voxa::cli::addStatusCommand(app, installation);
    voxa::cli::addClockCommand(app, installation);
    voxa::cli::addDownloadCommands(app, installation);
    voxa::cli::addReadCommand(app, installation);
    voxa::cli::addJournalCommand(app, installation);
    voxa::cli::addSendCommands(app, installation);
    voxa::cli::addDatabaseCommands(app, installation);
    voxa::cli::addSimulatorCommands(app, installation);
    voxa::cli::addDemoCommand(app, installation);
    try {
      app.parse(argc, argv);
    } catch (const CLI::ParseError& problem) {
      return app.exit(problem) == 0 ? 0 : misused;
    } catch (...) {
      installation.explainFailure(calledCommand(app));
      return failed;
    }
    return installation.prompts().failuresShown() > 0 ? failed : 0;
  } catch (const std::exception& failure) {
    std::cerr << "voxa: " << failure.what() << '\n';
    return failed;
  }
}
