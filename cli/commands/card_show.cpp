// voxa card show: all that is known of one card.

#include <iostream>

#include "card_commands.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/card_details.h"

namespace voxa::cli {

namespace {

struct ShowOptions {
  std::string card;
  bool showPins = false;
  bool json = false;
};

void show(Session& session, const ShowOptions& options) {
  session.open();
  const CardDetails card = cardDetails(session.library(), options.card);
  const CardRow& row = card.row;
  std::vector<std::string> doors;
  for (const CardDetails::Door& door : card.doors)
    doors.push_back(door.reader + ": " +
                    (door.shut ? "stays shut, its program is another one" : door.program));
  std::vector<std::string> columns = {"Number",   "Name",     "EarlierNames", "Code",       "Group",  "Valid",
                                      "Until",    "Credit",   "Deleted",      "Supervisor", "Note",   "Doors",
                                      "LastSeen", "LastDoor", "LastOutcome",  "ToSend",     "Missing"};
  std::vector<Cell> cells = {row.number,
                             row.name,
                             card.earlierNames,
                             row.code,
                             row.group,
                             row.valid,
                             row.until,
                             row.credit,
                             card.deleted,
                             row.supervisor,
                             card.note.empty() ? Value() : Value(card.note),
                             doors,
                             card.lastUse ? Cell::moment(card.lastUse->date) : Cell(),
                             card.lastUse ? Cell(card.lastUse->reader) : Cell(),
                             card.lastUse ? Cell(textOf(card.lastUse->meaning)) : Cell(),
                             row.toSend,
                             card.missing};
  if (options.showPins) {
    columns.emplace_back("Pin");
    cells.emplace_back(row.pin.empty() ? Value() : Value(row.pin));
  }
  printOne(std::cout, columns, cells, options.json);
}

}  // namespace

void addCardShowCommand(Command& group, Session& session) {
  auto* showing = group.add_subcommand("show", "Show all that is known of a card");
  auto shown = std::make_shared<ShowOptions>();
  showing->add_option("CARD", shown->card, "Number or name of the card, also of a deleted one")->required();
  showing->add_flag("--show-pins", shown->showPins, "With its personal code");
  showing->add_flag("--json", shown->json, "As a JSON object");
  showing->footer(
      "Doors are those of its group, each with the weekly program by which it opens. Missing tells what a\n"
      "controller has yet to be told of the card. Whether a door opens now says 'voxa access check'.\n"
      "Examples:\n  voxa card show \"Ann Lee\"\n  voxa card show 12 --json");
  showing->callback([&session, shown] { show(session, *shown); });
}

}  // namespace voxa::cli
