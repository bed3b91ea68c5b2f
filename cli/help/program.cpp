#include "help/program.h"

#include <algorithm>

#include "commands/commands.h"
#include "commands/session.h"
#include "help/help_commands.h"
#include "help/typed_words.h"
#include "output/command_line.h"

namespace voxa::cli {

namespace {

void addGlobalOptions(Command& program, Settings& settings) {
  program.add_option("--dir", settings.opening.folder, "Folder of the installation")->capture_default_str();
  program.add_flag("--yes", settings.yes, "Answer questions with Yes, and go on without silent controllers");
  program.add_option("--answer", settings.answers, "Answer boxes that have this button with it")
      ->isMemberInAnyCase({"abort", "retry", "ignore", "yes", "no", "cancel"});
  program.add_flag("--inhibit", settings.opening.inhibit, "Call no driver, as if every send succeeded");
  program.add_flag_callback(
      "--no-log", [&settings] { settings.opening.log = false; }, "Write no communication log (COM.LOG)");
  program.add_flag("--trust-group", settings.opening.trustGroup,
                   "Also work in a folder that its group can write");
  program.add_flag("--four-zones", settings.opening.fourZones,
                   "The controllers work with four intervals a day");
}

struct CommandGroup {
  std::vector<const char*> names;  // of the commands that it adds
  void (*add)(Command& program, Session& session);
};

// In the order of the help.
const CommandGroup groups[] = {{{"init"}, addInitCommand},
                               {{"station"}, addStationCommands},
                               {{"reader"}, addReaderCommands},
                               {{"daily"}, addDailyCommands},
                               {{"weekly"}, addWeeklyCommands},
                               {{"holiday"}, addHolidayCommands},
                               {{"badge"}, addBadgeCommands},
                               {{"group"}, addGroupCommands},
                               {{"card"}, addCardCommands},
                               {{"access"}, addAccessCommands},
                               {{"lift"}, addLiftCommands},
                               {{"alarm"}, addAlarmCommands},
                               {{"import", "export"}, addImportCommands},
                               {{"status"}, addStatusCommand},
                               {{"controller"}, addControllerCommands},
                               {{"clock"}, addClockCommand},
                               {{"plan"}, addPlanCommand},
                               {{"download"}, addDownloadCommands},
                               {{"read"}, addReadCommand},
                               {{"journal"}, addJournalCommand},
                               {{"report"}, addReportCommand},
                               {{"command", "log"}, addSendCommands},
                               {{"db"}, addDatabaseCommands},
                               {{"sim"}, addSimulatorCommands},
                               {{"demo"}, addDemoCommand}};

/// The group of the command that the words name; nullptr when they name none of these.
const CommandGroup* groupNamed(const Command& program, const std::vector<std::string>& words) {
  const TypedWords typed = readWords(program, words);  // which knows the options before commands alone
  if (typed.places.empty()) return nullptr;
  const auto name = std::find(words.begin(), words.end(), typed.places.front());
  if (std::find(words.begin(), name, "--help") != name || std::find(words.begin(), name, "-h") != name)
    return nullptr;
  for (const CommandGroup& group : groups) {
    if (std::find(group.names.begin(), group.names.end(), *name) != group.names.end()) return &group;
  }
  return nullptr;
}

}  // namespace

void addProgram(Command& program, Session& session, const std::vector<std::string>& words) {
  addGlobalOptions(program, session.settings);
  if (const CommandGroup* named = groupNamed(program, words); named != nullptr)
    return named->add(program, session);
  for (const CommandGroup& group : groups) group.add(program, session);
  addHelpCommands(program, session);
}

}  // namespace voxa::cli
