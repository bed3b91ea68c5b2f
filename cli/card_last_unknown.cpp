// voxa card last-unknown: how the code of a new card gets in.

#include <CLI/CLI.hpp>
#include <iostream>

#include "app/qdb.h"
#include "card_commands.h"
#include "installation.h"
#include "journal/journal.h"
#include "lines/code.h"
#include "lookup.h"
#include "transaction_type.h"

namespace voxa::cli {

namespace {

void showLastUnknown(Installation& installation, const std::string& reader) {
  installation.openForSending();
  const std::string name = readerNamed(installation, reader)->get("Name").toText();
  const std::string code = installation.qdb().Journal().getLastCardCode(name);
  if (!code.empty()) std::cout << shownCode(code) << '\n';  // that there is none has been shown
}

}  // namespace

void addLastUnknownCommand(CLI::App& group, Installation& installation) {
  auto* command = group.add_subcommand(
      "last-unknown", "Print the code of the unknown card that a reader saw last today, for 'voxa card add'");
  auto reader = std::make_shared<std::string>();
  command->add_option("--reader", *reader, "The reader, whose controller is read first")->required();
  command->footer(
      "The transaction leaves the journal: the next call prints the one before.\n"
      "Example:\n  voxa card last-unknown --reader \"Main entrance\"");
  command->callback([&installation, reader] { showLastUnknown(installation, *reader); });
}

}  // namespace voxa::cli
