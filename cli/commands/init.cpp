// voxa init: a new installation in a folder.

#include <iostream>

#include "commands.h"
#include "output/command_line.h"
#include "session.h"

namespace voxa::cli {

void addInitCommand(Command& app, Session& session) {
  auto* init = app.add_subcommand("init", "Create an installation in the folder");
  init->footer("Example:\n  voxa --dir plant init");
  init->callback([&] {
    session.create();
    std::cout << "Created an installation in " << session.folder() << '\n';
  });
}

}  // namespace voxa::cli
