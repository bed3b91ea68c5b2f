// voxa db: copies of the main database.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "app/installation_files.h"
#include "app/qdb.h"
#include "comm/modem_file.h"
#include "commands.h"
#include "may_write.h"
#include "platform/files.h"
#include "session.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct FileOptions {
  std::string file, saveFirst;
  bool force = false;
};

/// Lets the library write the file without asking again.
void mayWrite(Session& session, const std::string& file, bool force) {
  requireMayWrite(session, file, force);
  if (files::exists(file)) session.prompts().prepare(Answer::yes);
}

void save(Session& session, const FileOptions& options) {
  session.openForSending();
  const std::string file = session.callersFile(options.file);
  mayWrite(session, file, options.force);
  session.prompts().files(file, "");
  if (session.qdb().saveDB() != 0) throw Refusal("the database was not saved");
  std::cout << "Saved as " << options.file << '\n';
}

/// The driver opens the modem files that the rows name: of a database from elsewhere a person has to have
/// seen them.
void requireModemsHere(Session& session, const std::string& file) {
  if (session.settings.yes || !files::isPlain(file)) return;
  std::string names;
  try {
    const auto backup = session.library().engine().open(file);
    names = eachOnALine(stationsWithModemElsewhere(*backup));
    backup->close();
  } catch (const Error&) {
    return;  // no database that could be restored, which the restore tells
  }
  if (names.empty()) return;
  throw Refusal("these stations of " + file +
                " have a modem file outside the installation; --yes takes it so:" + names);
}

void restore(Session& session, const FileOptions& options) {
  session.openForSending();
  CallerPrompts& prompts = session.prompts();
  // A link that the person names is followed, since only files themselves are opened as databases.
  std::error_code noSuchFile;
  const std::string given = session.callersFile(options.file);
  const std::filesystem::path found = std::filesystem::canonical(given, noSuchFile);
  const std::string file = noSuchFile ? given : found.string();
  if (isFileOfInstallation(session.folder(), file)) {
    throw Refusal(options.file + " belongs to the installation: name a saved database");
  }
  const bool asks = ConsolePrompts::isTerminal();
  if (!asks && !session.settings.answersYes()) {
    throw Refusal(
        "a restore replaces the database with all its cards: without a terminal to ask on it needs --yes");
  }
  requireModemsHere(session, file);
  // The first question is whether to save the present database. Only a person can name a file for it now.
  if (!options.saveFirst.empty()) {
    prompts.prepare(Answer::yes);
    mayWrite(session, session.callersFile(options.saveFirst), options.force);
  } else if (session.settings.yes || !asks) {
    prompts.prepare(Answer::no);
  }
  prompts.files(options.saveFirst.empty() ? "" : session.callersFile(options.saveFirst), file);
  if (session.qdb().restoreDB() != 0) throw Refusal("the database was not restored");
  std::cout << "Restored from " << options.file
            << ". The controllers may hold other programs: voxa download all --full\n";
}

}  // namespace

void addDatabaseCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("db", "Copies of the main database")->require_subcommand(1);

  auto* saving = group->add_subcommand("save", "Save a copy");
  auto target = std::make_shared<FileOptions>();
  saving->add_option("FILE", target->file, "File of the copy")->required();
  saving->add_flag("--force", target->force, "Replace the file when it exists");
  saving->footer("Example:\n  voxa db save backup.mdb");
  saving->callback([&session, target] { save(session, *target); });

  auto* restoring = group->add_subcommand("restore", "Put a copy in place of the main database");
  auto source = std::make_shared<FileOptions>();
  restoring->add_option("FILE", source->file, "The copy")->required();
  auto* saveFirst =
      restoring->add_option("--save-first", source->saveFirst, "File to save the present database to");
  restoring->add_flag("--force", source->force, "Replace that file when it exists")->needs(saveFirst);
  restoring->footer(
      "It asks before it replaces the database; without a terminal it needs --yes.\n"
      "Example:\n  voxa db restore backup.mdb --save-first present.mdb");
  restoring->callback([&session, source] { restore(session, *source); });
}

}  // namespace voxa::cli
