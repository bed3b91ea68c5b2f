// voxa init: a new installation in a folder.

#include <iostream>
#include <memory>

#include "commands.h"
#include "output/command_line.h"
#include "session.h"
#include "site/site.h"
#include "work/demo_data.h"

namespace voxa::cli {

namespace {

void fillWithDemoData(Session& session) {
  site::Site site;
  for (const DemoController& controller : fillDemoData(session.library())) {
    site::ControllerInfo info;
    info.station = controller.place.station;
    info.address = controller.place.address;
    info.type = controller.type;
    info.speed = controller.speed;
    site.addController(info);
    site.setClock(info.station, info.address, 0);
  }
  std::cout
      << "It has 2 stations, 7 readers, 25 cards, and a journal of the last days. Simulated controllers "
         "stand at its lines:\n"
         "  voxa status\n"
         "  voxa download\n"
         "  voxa sim swipe --station Local --reader \"Main entrance\" --card 3\n"
         "  voxa read --all\n";
}

}  // namespace

void addInitCommand(Command& app, Session& session) {
  auto* init = app.add_subcommand("init", "Create an installation in the folder");
  auto demoData = std::make_shared<bool>(false);
  init->add_flag("--demo-data", *demoData, "With a small company in it, to try things on");
  init->footer(
      "Where the real driver library stands beside the program, a demonstration's lines are real ones too:\n"
      "nothing of it is sent before you say so.\n"
      "Examples:\n  voxa --dir plant init\n  voxa --dir trial init --demo-data");
  init->callback([&session, demoData] {
    session.create();
    std::cout << "Created an installation in " << session.folder() << '\n';
    if (*demoData) fillWithDemoData(session);
  });
}

}  // namespace voxa::cli
