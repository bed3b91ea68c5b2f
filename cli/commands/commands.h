#pragma once

namespace CLI {
class App;
}

namespace voxa::cli {

class Session;

// Each adds the subcommands of its group, with help, example and action, to the program's command line.

void addInitCommand(CLI::App& app, Session& session);
void addStationCommands(CLI::App& app, Session& session);
void addReaderCommands(CLI::App& app, Session& session);
void addDailyCommands(CLI::App& app, Session& session);
void addWeeklyCommands(CLI::App& app, Session& session);
void addHolidayCommands(CLI::App& app, Session& session);
void addBadgeCommands(CLI::App& app, Session& session);
void addGroupCommands(CLI::App& app, Session& session);
void addCardCommands(CLI::App& app, Session& session);
void addLiftCommands(CLI::App& app, Session& session);
void addImportCommands(CLI::App& app, Session& session);
void addStatusCommand(CLI::App& app, Session& session);
void addClockCommand(CLI::App& app, Session& session);
void addDownloadCommands(CLI::App& app, Session& session);
void addReadCommand(CLI::App& app, Session& session);
void addJournalCommand(CLI::App& app, Session& session);
void addSendCommands(CLI::App& app, Session& session);
void addDatabaseCommands(CLI::App& app, Session& session);
void addSimulatorCommands(CLI::App& app, Session& session);
void addDemoCommand(CLI::App& app, Session& session);

}  // namespace voxa::cli
