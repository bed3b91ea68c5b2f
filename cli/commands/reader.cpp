// voxa reader: the doors.

#include <iostream>

#include "comm/com.h"
#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/links.h"
#include "work/readers.h"

namespace voxa::cli {

namespace {

void addReader(Session& session, const ReaderTexts& texts) {
  session.openForSending();
  const AddedReader added = voxa::addReader(session.library(), texts);
  if (added.cardsToSend && session.com().readyToSend(CTReader, texts.name, nullptr)) {
    session.show(sendDefaultGroup(session.library(), added.id));
  }
  std::cout << "Reader " << added.id << ": " << texts.name << '\n';
  if (added.newController) {
    std::cout << "Its controller is new: 'voxa download' sends it what it misses\n";
  }
}

void listReaders(Session& session, bool json) {
  session.open();
  TableOutput table({"Id", "Name", "Station", "Address", "Position", "Type"});
  for (const ReaderRow& reader : voxa::listReaders(session.library())) {
    table.add({reader.id, reader.name, reader.station, reader.address, reader.position, reader.type});
  }
  table.print(std::cout, json);
}

}  // namespace

void addReaderCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("reader", "Doors")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a reader, which the default access group opens always");
  auto options = std::make_shared<ReaderTexts>();
  add->add_option("NAME", options->name, "Name of the new reader")->required();
  add->add_option("--station", options->station, "Its station")->required();
  add->add_option("--address", options->address, "Address of its controller on the line, 1 to 16")
      ->required();
  add->add_option("--position", options->position, "Its door on the controller, 1 to 4")->required();
  add->add_option("--type", options->type, "Type of its controller")
      ->isMember({"QSX3", "VRMD1"})
      ->capture_default_str();
  add->footer(
      "Positions 1 and 3, 2 and 4 are the two sides of one door: an access group that may pass one side may "
      "pass "
      "the\nother.\nExample:\n  voxa reader add \"Front door\" --station Local --address 1 --position 1");
  add->callback([&session, options] { addReader(session, *options); });

  addListCommand(*group, session, "list", "List the readers", "voxa reader list", listReaders);
}

}  // namespace voxa::cli
