// voxa card: the cards. card_change.cpp changes them, card_block.cpp and card_batch.cpp reach the controllers
// at once, card_deleted.cpp is about deleted ones.

#include <iostream>

#include "card_commands.h"
#include "commands.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/cards.h"

namespace voxa::cli {

namespace {

struct ListOptions {
  std::string text;
  CardFilter filter;
  bool showPins = false;
  bool json = false;
};

void print(const std::vector<CardRow>& cards, const ListOptions& options) {
  std::vector<std::string> columns = {"Number",     "Name",  "Code",   "Group", "Valid",
                                      "Supervisor", "Until", "Credit", "ToSend"};
  if (options.showPins) columns.emplace_back("Pin");
  TableOutput table(columns);
  for (const CardRow& card : cards) {
    std::vector<Cell> cells = {card.number,     card.name,  card.code,   card.group, card.valid,
                               card.supervisor, card.until, card.credit, card.toSend};
    if (options.showPins) cells.emplace_back(card.pin);
    table.add(std::move(cells));
  }
  table.print(std::cout, options.json);
}

void list(Session& session, const ListOptions& options) {
  session.open();
  print(listCards(session.library(), options.filter), options);
}

void find(Session& session, const ListOptions& options) {
  session.open();
  print(findCards(session.library(), options.text, options.filter.deleted), options);
}

void addListOptions(Command& command, ListOptions& options) {
  command.add_flag("--deleted", options.filter.deleted, "The deleted cards instead");
  command.add_flag("--show-pins", options.showPins, "With the personal codes");
  command.add_flag("--json", options.json, "As a JSON array");
}

void addFilterOptions(Command& command, CardFilter& filter) {
  command.add_option("--group", filter.group, "Only those of this access group");
  command.add_option("--door", filter.door, "Only those whose group opens this door");
  command.add_option("--name", filter.name, "Only those with this in the name");
  command.add_option("--valid", filter.valid, "Only those that are valid, or blocked: yes or no")
      ->offers({"yes", "no"});
  command.add_flag("--pending", filter.pending, "Only those of which a controller has yet to be told");
  command.add_flag("--expired", filter.expired, "Only those whose last day is over");
  command.add_option("--expires-before", filter.expiresBefore,
                     "Only those whose last day comes, and is before this one");
  command.add_flag("--never-used", filter.neverUsed, "Only those of which the journal has nothing");
  command.add_option("--sort", filter.sort, "By number, name, group or until")
      ->offers({"number", "name", "group", "until"});
  command.add_option("--limit", filter.limit, "So many at most");
}

}  // namespace

void addCardCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("card", "Cards")->require_subcommand(1);

  auto* listing = group->add_subcommand("list", "List the cards");
  auto listed = std::make_shared<ListOptions>();
  addFilterOptions(*listing, listed->filter);
  addListOptions(*listing, *listed);
  listing->footer(
      "With several conditions the cards that are as all of them say.\n"
      "Examples:\n"
      "  voxa card list --group Visitors --expires-before 31/01/2027 --sort until\n"
      "  voxa card list --never-used --door \"Main entrance\" --json");
  listing->callback([&session, listed] { list(session, *listed); });

  auto* finding =
      group->add_subcommand("find", "List the cards of a number or code, or with a text in the name");
  auto found = std::make_shared<ListOptions>();
  finding->add_option("TEXT", found->text, "Number, code or part of the name")->required();
  addListOptions(*finding, *found);
  finding->footer("Examples:\n  voxa card find lee\n  voxa card find 4711 --deleted");
  finding->callback([&session, found] { find(session, *found); });

  addCardShowCommand(*group, session);
  addCardChangeCommands(*group, session);
  addCardBlockingCommands(*group, session);
  addCardClearingCommands(*group, session);
  addDeletedCardCommands(*group, session);
  addLastUnknownCommand(*group, session);
}

}  // namespace voxa::cli
