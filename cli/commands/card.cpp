// voxa card: the cards. Clearing and creating them on the controllers is in card_batch.cpp.

#include <iostream>

#include "card_commands.h"
#include "commands.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/cards.h"

namespace voxa::cli {

namespace {

struct CardOptions {
  std::string card;
  CardTexts texts;
};

struct ListOptions {
  std::string group, text;
  bool deleted = false;
  bool showPins = false;
  bool json = false;
};

void add(Session& session, const CardOptions& options) {
  session.openForSending();
  const std::int16_t number = addCard(session.library(), options.texts);
  std::cout << "Card " << number << ": " << *options.texts.name << '\n';
}

void set(Session& session, const CardOptions& options) {
  session.openForSending();
  changeCard(session.library(), options.card, options.texts);
}

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
  const auto group = options.group.empty() ? std::nullopt : std::optional(options.group);
  print(listCards(session.library(), group, options.deleted), options);
}

void find(Session& session, const ListOptions& options) {
  session.open();
  print(findCards(session.library(), options.text), options);
}

void addValueOptions(Command& command, CardTexts& texts) {
  command.add_option("--number", texts.number, "Its number on the controllers, 1 to 9999");
  command.add_option("--code", texts.code, "Its code, 1 to 8 characters 0 to 9 and A to F");
  command.add_option("--group", texts.group, "Name or number of its access group");
  command.add_option("--pin", texts.pin, "Its personal code, 1 to 9999; or none");
  command.add_option("--until", texts.until, "Its last valid day, 31/12/2027 or 2027-12-31; or none");
  command.add_option("--credit", texts.credit, "How many times it opens, 1 to 99; or none: always");
}

void addListOptions(Command& command, ListOptions& options) {
  command.add_flag("--show-pins", options.showPins, "With the personal codes");
  command.add_flag("--json", options.json, "As a JSON array");
}

}  // namespace

void addCardCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("card", "Cards")->require_subcommand(1);

  auto* adding = group->add_subcommand("add", "Add a card, which is to be sent then");
  auto added = std::make_shared<CardOptions>();
  adding->add_option("NAME", added->texts.name, "Name of its holder")->required();
  addValueOptions(*adding, added->texts);
  adding->get_option("--number")
      ->description("Its number, 1 to 9999; the first that no card had unless given");
  adding->get_option("--code")->required();
  adding->get_option("--group")->required();
  adding->add_flag_callback(
      "--supervisor", [added] { added->texts.supervisor = "yes"; }, "It is a supervisor's card");
  adding->footer(
      "Example:\n  voxa card add \"Ann Lee\" --code 4711 --group Staff --pin 2468 --until 31/12/2027");
  adding->callback([&session, added] { add(session, *added); });

  auto* listing = group->add_subcommand("list", "List the cards");
  auto listed = std::make_shared<ListOptions>();
  listing->add_option("--group", listed->group, "Only those of this access group");
  listing->add_flag("--deleted", listed->deleted, "The deleted cards instead");
  addListOptions(*listing, *listed);
  listing->footer("Example:\n  voxa card list --group Staff");
  listing->callback([&session, listed] { list(session, *listed); });

  auto* finding =
      group->add_subcommand("find", "List the cards of a number or code, or with a text in the name");
  auto found = std::make_shared<ListOptions>();
  finding->add_option("TEXT", found->text, "Number, code or part of the name")->required();
  addListOptions(*finding, *found);
  finding->footer("Example:\n  voxa card find lee");
  finding->callback([&session, found] { find(session, *found); });

  auto* setting = group->add_subcommand("set", "Change a card, which is to be sent again then");
  auto changed = std::make_shared<CardOptions>();
  setting->add_option("CARD", changed->card, "Number or name of the card")->required();
  setting->add_option("--name", changed->texts.name, "Name of its holder");
  addValueOptions(*setting, changed->texts);
  setting->add_option("--supervisor", changed->texts.supervisor,
                      "Whether it is a supervisor's card: yes or no");
  setting->add_option("--valid", changed->texts.valid, "Whether it opens anything: yes or no");
  setting->footer(
      "The controllers erase a card at once that gets another number or code, those that its new group does "
      "not\n"
      "reach one that gets another group; they have to answer.\n"
      "Example:\n  voxa card set 12 --group Visitors --valid no");
  setting->callback([&session, changed] { set(session, *changed); });

  addCardClearingCommands(*group, session);
  addLastUnknownCommand(*group, session);
}

}  // namespace voxa::cli
