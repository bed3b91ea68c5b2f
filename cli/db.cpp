// voxa db: copies of the main database.

#include <CLI/CLI.hpp>
#include <iostream>

#include "app/qdb.h"
#include "commands.h"
#include "installation.h"
#include "refusal.h"

namespace voxa::cli {

namespace {

void save(Installation& installation, const std::string& file) {
  installation.openForSending();
  installation.prompts().files(installation.callersFile(file), "");
  if (installation.qdb().saveDB() != 0) throw Refusal("the database was not saved");
  std::cout << "Saved as " << file << '\n';
}

void restore(Installation& installation, const std::string& file, const std::string& saveFirst) {
  installation.openForSending();
  CallerPrompts& prompts = installation.prompts();
  prompts.files(saveFirst.empty() ? "" : installation.callersFile(saveFirst), installation.callersFile(file));
  // The first question is whether to save the present database. Only a person can name a file for it now.
  if (!saveFirst.empty()) {
    prompts.prepare(Answer::yes);
  } else if (installation.settings.yes || !ConsolePrompts::isTerminal()) {
    prompts.prepare(Answer::no);
  }
  if (installation.qdb().restoreDB() != 0) throw Refusal("the database was not restored");
  std::cout << "Restored from " << file
            << ". The controllers may hold other programs: voxa download all --full\n";
}

}  // namespace

void addDatabaseCommands(CLI::App& app, Installation& installation) {
  auto* group = app.add_subcommand("db", "Copies of the main database")->require_subcommand(1);

  auto* saving = group->add_subcommand("save", "Save a copy");
  auto target = std::make_shared<std::string>();
  saving->add_option("FILE", *target, "File of the copy")->required();
  saving->footer("Example:\n  voxa db save backup.mdb");
  saving->callback([&installation, target] { save(installation, *target); });

  auto* restoring = group->add_subcommand("restore", "Put a copy in place of the main database");
  auto source = std::make_shared<std::string>();
  auto first = std::make_shared<std::string>();
  restoring->add_option("FILE", *source, "The copy")->required();
  restoring->add_option("--save-first", *first, "File to save the present database to");
  restoring->footer("Example:\n  voxa db restore backup.mdb --save-first present.mdb");
  restoring->callback([&installation, source, first] { restore(installation, *source, *first); });
}

}  // namespace voxa::cli
