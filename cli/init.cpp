// voxa init: a new installation in a folder.

#include <CLI/CLI.hpp>
#include <iostream>

#include "commands.h"
#include "installation.h"

namespace voxa::cli {

void addInitCommand(CLI::App& app, Installation& installation) {
  auto* init = app.add_subcommand("init", "Create an installation in the folder");
  init->footer("Example:\n  voxa --dir plant init");
  init->callback([&] {
    installation.create();
    std::cout << "Created an installation in " << installation.folder() << '\n';
  });
}

}  // namespace voxa::cli
