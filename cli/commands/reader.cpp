// voxa reader: the doors. How a door works is in reader_settings.cpp.

#include <iostream>

#include "changed_doors.h"
#include "comm/com.h"
#include "commands.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "reader_settings.h"
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
    std::cout << "It is the first reader of its controller: 'voxa download' sends what that one misses\n";
  }
}

struct ListOptions {
  ReaderFilter filter;
  bool json = false;
};

void listReaders(Session& session, const ListOptions& options) {
  session.open();
  TableOutput table({"Id", "Name", "Station", "Address", "Position", "Type"});
  for (const ReaderRow& reader : voxa::listReaders(session.library(), options.filter)) {
    table.add({reader.id, reader.name, reader.station, reader.address, reader.position, reader.type});
  }
  table.print(std::cout, options.json);
}

struct RemovalOptions {
  std::string reader;
  ReaderRemoval removal;
};

void showLiftsLeft(const std::vector<std::string>& lifts) {
  for (const std::string& lift : lifts) {
    std::cerr << "Mind: the lift output " << lift
              << " stays at the controller that has no reader any more: move it with 'voxa lift set'\n";
  }
}

void remove(Session& session, const RemovalOptions& options) {
  session.openForSending();
  const DeletedReader deleted = deleteReader(session.library(), options.reader, options.removal);
  for (const std::string& grant : deleted.grants) std::cout << grant << " now\n";
  showChangedDoors(session, deleted.doors);
  showLiftsLeft(deleted.liftsLeft);
}

struct ChangeOptions {
  std::string reader;
  ReaderChange change;
};

void change(Session& session, const ChangeOptions& options) {
  session.openForSending();
  const ChangedReader changed = changeReader(session.library(), options.reader, options.change);
  for (const std::string& reader : changed.typeToo) {
    std::cout << "The type is that of the controller: " << reader << " has it, too\n";
  }
  showChangedDoors(session, changed.doors);
  showLiftsLeft(changed.liftsLeft);
  if (options.change.settings.any())
    std::cout << "The settings are kept for other programs: this system sends no lines for them\n";
}

void addChanging(Command& group, Session& session) {
  auto* set = group.add_subcommand("set", "Change where a reader is, or how its door works");
  auto changed = std::make_shared<ChangeOptions>();
  ReaderChange& to = changed->change;
  set->add_option("NAME", changed->reader, "Name or number of the reader")->required();
  set->add_option("--station", to.station, "Its station");
  set->add_option("--address", to.address, "Address of its controller on the line, 1 to 16");
  set->add_option("--position", to.position, "Its door on the controller, 1 to 4");
  set->add_option("--type", to.type, "Type of its controller, and of all readers there")
      ->isMemberInAnyCase({"QSX3", "VRMD1"});
  addReaderSettings(*set, to.settings);
  set->add_flag("--gone", to.gone, "Its controller is gone for good: it is not asked to erase its cards");
  set->footer(
      "A controller that loses cards by it erases them at once, and has to answer. How the door works is "
      "kept "
      "for\nother programs: this system sends no lines for it.\n"
      "Examples:\n  voxa reader set \"Back door\" --address 3 --position 2\n"
      "  voxa reader set \"Front door\" --open-delay 6 --antipassback yes");
  set->callback([&session, changed] { change(session, *changed); });

  auto* rename = group.add_subcommand("rename", "Give a reader another name");
  auto names = std::make_shared<std::pair<std::string, std::string>>();
  rename->add_option("NAME", names->first, "Name or number of the reader")->required();
  rename->add_option("NEW", names->second, "Its new name")->required();
  rename->footer(
      "The transactions in the journal keep the name that they were read with.\n"
      "Examples:\n  voxa reader rename \"Back door\" \"Goods entrance\"\n  voxa reader rename 3 Workshop");
  rename->callback([&session, names] {
    session.openForSending();
    renameReader(session.library(), names->first, names->second);
  });

  auto* deleting = group.add_subcommand("delete", "Delete a reader");
  auto deleted = std::make_shared<RemovalOptions>();
  deleting->add_option("NAME", deleted->reader, "Name or number of the reader")->required();
  auto* moveTo = deleting->add_option("--move-to", deleted->removal.moveTo,
                                      "The reader that its access groups open instead, at the same times");
  deleting->add_flag("--revoke", deleted->removal.revoke, "Its access groups lose the door")
      ->excludes(moveTo);
  deleting->add_flag("--gone", deleted->removal.gone,
                     "Its controller is gone for good: it is not asked to erase its cards");
  deleting->footer(
      "A controller that loses its last door of a group erases the cards at once, and has to answer.\n"
      "Examples:\n  voxa reader delete \"Side door\" --move-to \"Back door\"\n"
      "  voxa reader delete \"Old gate\" --revoke --gone");
  deleting->callback([&session, deleted] { remove(session, *deleted); });
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
      ->isMemberInAnyCase({"QSX3", "VRMD1"})
      ->capture_default_str();
  add->footer(
      "Positions 1 and 3, 2 and 4 are the two sides of one door: an access group that may pass one side may "
      "pass the\nother.\n"
      "Examples:\n  voxa reader add \"Front door\" --station Local --address 1 --position 1\n"
      "  voxa reader add \"Front exit\" --station Local --address 1 --position 3");
  add->callback([&session, options] { addReader(session, *options); });

  auto* list = group->add_subcommand("list", "List the readers");
  auto listed = std::make_shared<ListOptions>();
  list->add_option("--station", listed->filter.station, "Those of this station");
  list->add_option("--group", listed->filter.group, "Those that are granted to this access group");
  list->add_flag("--json", listed->json, "As a JSON array");
  list->footer("Examples:\n  voxa reader list\n  voxa reader list --station Annex --group Employees");
  list->callback([&session, listed] { listReaders(session, *listed); });

  addShowReaderCommand(*group, session);
  addChanging(*group, session);
}

}  // namespace voxa::cli
