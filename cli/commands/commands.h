#pragma once

namespace voxa::cli {

class Command;
class Session;

// Each adds the subcommands of its group, with help, example and action, to the program's command line.

void addInitCommand(Command& app, Session& session);
void addStationCommands(Command& app, Session& session);
void addReaderCommands(Command& app, Session& session);
void addDailyCommands(Command& app, Session& session);
void addWeeklyCommands(Command& app, Session& session);
void addHolidayCommands(Command& app, Session& session);
void addBadgeCommands(Command& app, Session& session);
void addGroupCommands(Command& app, Session& session);
void addCardCommands(Command& app, Session& session);
void addAccessCommands(Command& app, Session& session);
void addLiftCommands(Command& app, Session& session);
void addAlarmCommands(Command& app, Session& session);
void addImportCommands(Command& app, Session& session);
void addStatusCommand(Command& app, Session& session);
void addControllerCommands(Command& app, Session& session);
void addPlanCommand(Command& app, Session& session);
void addClockCommand(Command& app, Session& session);
void addDownloadCommands(Command& app, Session& session);
void addReadCommand(Command& app, Session& session);
void addJournalCommand(Command& app, Session& session);
void addReportCommand(Command& app, Session& session);
void addSendCommands(Command& app, Session& session);
void addDatabaseCommands(Command& app, Session& session);
void addSimulatorCommands(Command& app, Session& session);
void addDemoCommand(Command& app, Session& session);

}  // namespace voxa::cli
