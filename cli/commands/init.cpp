// voxa init: a new installation in a folder.

#include <CLI/CLI.hpp>
#include <iostream>

#include "commands.h"
#include "session.h"

namespace voxa::cli {

void addInitCommand(CLI::App& app, Session& session) {
  auto* init = app.add_subcommand("init", "Create an installation in the folder");
  init->footer("Example:\n  voxa --dir plant init");
  init->callback([&] {
    session.create();
    std::cout << "Created an installation in " << session.folder() << '\n';
  });
}

}  // namespace voxa::cli
