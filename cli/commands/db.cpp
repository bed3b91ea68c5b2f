// voxa db: copies of the main database; statements on it (db_query.cpp).

#include <iostream>

#include "app/qdb.h"
#include "commands.h"
#include "convert.h"
#include "db_query.h"
#include "may_write.h"
#include "output/command_line.h"
#include "plan_output.h"
#include "platform/files.h"
#include "session.h"
#include "work/carry_out.h"
#include "work/copies.h"
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

void restore(Session& session, const FileOptions& options) {
  session.openForSending();
  CallerPrompts& prompts = session.prompts();
  const bool asks = ConsolePrompts::isTerminal();
  if (!asks && !session.settings.answersYes()) {
    throw Refusal(
        "a restore replaces the database with all its cards: without a terminal to ask on it needs --yes");
  }
  const std::string file =
      copyToRestore(session.library(), session.callersFile(options.file), session.settings.yes);
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
            << ". What the controllers miss by it ('voxa download' sends it):\n";
  try {
    showPlan(planAll(session.library(), {}), false);
  } catch (const Refusal& refusal) {
    throw Leftover(std::string("it was restored, but what the controllers miss cannot be told: ") +
                   refusal.what());
  }
}

}  // namespace

void addDatabaseCommands(Command& app, Session& session) {
  auto* group =
      app.add_subcommand("db", "Copies of the main database, and statements on it")->require_subcommand(1);

  auto* saving = group->add_subcommand("save", "Save a copy");
  auto target = std::make_shared<FileOptions>();
  saving->add_option("FILE", target->file, "File of the copy")->required();
  saving->add_flag("--force", target->force, "Replace the file when it exists");
  saving->footer("Examples:\n  voxa db save backup.mdb\n  voxa db save backup.mdb --force");
  saving->callback([&session, target] { save(session, *target); });

  auto* restoring = group->add_subcommand("restore", "Put a copy in place of the main database");
  auto source = std::make_shared<FileOptions>();
  restoring->add_option("FILE", source->file, "The copy")->required();
  auto* saveFirst =
      restoring->add_option("--save-first", source->saveFirst, "File to save the present database to");
  restoring->add_flag("--force", source->force, "Replace that file when it exists")->needs(saveFirst);
  restoring->footer(
      "It asks before it replaces the database; without a terminal it needs --yes.\n"
      "Examples:\n  voxa db restore backup.mdb --save-first present.mdb\n  voxa --yes db restore backup.mdb");
  restoring->callback([&session, source] { restore(session, *source); });

  addQueryCommand(*group, session);
  addConvertCommand(*group, session);
}

}  // namespace voxa::cli
