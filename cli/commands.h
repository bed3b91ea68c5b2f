#pragma once

namespace CLI {
class App;
}

namespace voxa::cli {

class Installation;

// Each adds the subcommands of its group, with help, example and action, to the program's command line.

void addInitCommand(CLI::App& app, Installation& installation);
void addStationCommands(CLI::App& app, Installation& installation);
void addReaderCommands(CLI::App& app, Installation& installation);
void addDailyCommands(CLI::App& app, Installation& installation);
void addWeeklyCommands(CLI::App& app, Installation& installation);
void addHolidayCommands(CLI::App& app, Installation& installation);
void addBadgeCommands(CLI::App& app, Installation& installation);
void addGroupCommands(CLI::App& app, Installation& installation);
void addCardCommands(CLI::App& app, Installation& installation);
void addLiftCommands(CLI::App& app, Installation& installation);
void addImportCommands(CLI::App& app, Installation& installation);
void addStatusCommand(CLI::App& app, Installation& installation);
void addClockCommand(CLI::App& app, Installation& installation);
void addDownloadCommands(CLI::App& app, Installation& installation);
void addReadCommand(CLI::App& app, Installation& installation);
void addJournalCommand(CLI::App& app, Installation& installation);
void addSendCommands(CLI::App& app, Installation& installation);
void addDatabaseCommands(CLI::App& app, Installation& installation);
void addSimulatorCommands(CLI::App& app, Installation& installation);
void addDemoCommand(CLI::App& app, Installation& installation);

}  // namespace voxa::cli
