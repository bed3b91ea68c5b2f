// voxa card: the cards. Clearing and creating them on the controllers is in card_batch.cpp.

#include <CLI/CLI.hpp>
#include <iostream>

#include "access/card_record.h"
#include "card_commands.h"
#include "commands.h"
#include "component.h"
#include "lines/code.h"
#include "output/table_output.h"
#include "platform/text.h"
#include "session.h"
#include "work/card_values.h"
#include "work/forget_cards.h"
#include "work/refusal.h"
#include "work/transaction_type.h"

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

void addCard(Session& session, const CardOptions& options) {
  session.openForSending();
  CardValues values(options.texts, GroupNames(session.library()), session.clock());
  TakenByCards taken(session.library());
  taken.requireFree(values);
  if (!values.number) values.number = taken.freeNumber();
  const auto rows = session.rows("select * from Cardholders");
  rows->addNew();
  values.set(*rows);
  markWhole(*rows);
  rows->update();
  std::cout << "Card " << *values.number << ": " << *values.name << '\n';
}

void setCard(Session& session, const CardOptions& options) {
  session.openForSending();
  const auto row = cardNamed(session.library(), options.card);
  const CardValues values(options.texts, GroupNames(session.library()), session.clock());
  TakenByCards(session.library(), row->get("Id").toInt32()).requireFree(values);
  const Value held = row->get("AccessGroupId");
  const std::int16_t group = held.isNull() ? std::int16_t{0} : held.toInt16();
  const std::int32_t number = row->get("CardNum").toInt32();
  // A controller that keeps the card under its old number or code opens to whoever has the number, or the
  // card of that code, next.
  const bool another = (values.number && *values.number != number) ||
                       (values.code && !isCode(row->get("CardCode"), *values.code));
  const bool moves = another || (values.group && *values.group != group);
  if (moves) {
    std::vector<ReachedController> kept;
    if (!another) kept = reachOf(session.library(), *values.group);
    ForgetCards forget(session.library());
    forget.on(without(reachOf(session.library(), group), kept), {number});
    forget.send();
  }
  row->edit();
  values.set(*row);
  if (moves) markWhole(*row);
  row->update();
}

std::string pinText(const Value& pin) {
  return pin.isNull() ? "" : zeroPadded(pin.toInt32(), 4);
}

bool marked(const Recordset& row) {
  return cardRecord(row).parts.any();
}

// Lists those of the rows that `wanted` wants.
template <typename Wanted>
TableOutput tableOf(Session& session, const ListOptions& options, const std::string& where, Wanted wanted) {
  std::vector<std::string> columns = {"Number",     "Name",  "Code",   "Group", "Valid",
                                      "Supervisor", "Until", "Credit", "ToSend"};
  if (options.showPins) columns.emplace_back("Pin");
  TableOutput table(columns);
  const GroupNames groups(session.library());
  const auto rows = session.rows("select * from Cardholders where " + where + " order by CardNum");
  for (; !rows->eof(); rows->moveNext()) {
    if (!wanted(*rows)) continue;
    const Value group = rows->get("AccessGroupId");
    std::vector<Value> cells = {rows->get("CardNum"),
                                rows->get("Name"),
                                rows->get("CardCode"),
                                group.isNull() ? Value() : groups.name(group.toInt16()),
                                rows->get("Validated"),
                                rows->get("Supervisor"),
                                rows->get("ValidationDate"),
                                rows->get("Credit"),
                                marked(*rows)};
    if (options.showPins) cells.emplace_back(pinText(rows->get("PINCode")));
    table.add(std::move(cells));
  }
  return table;
}

void listCards(Session& session, const ListOptions& options) {
  session.open();
  std::string where = options.deleted ? "Deleted = true" : "Deleted = false";
  if (!options.group.empty()) {
    where += " and AccessGroupId = " + std::to_string(GroupNames(session.library()).id(options.group));
  }
  tableOf(session, options, where, [](const Recordset&) { return true; }).print(std::cout, options.json);
}

void findCards(Session& session, const ListOptions& options) {
  session.open();
  const std::string text = toLower(options.text);
  const std::string code = toLower(shownCode(options.text));
  const auto equals = [](const Value& value, const std::string& wanted) {
    if (value.isNull() || wanted.empty()) return false;
    const auto significant = [](const std::string& digits) {
      return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
    };
    return significant(toLower(shownCode(value.toText()))) == significant(wanted);
  };
  const TableOutput table = tableOf(session, options, "Deleted = false", [&](const Recordset& row) {
    return equals(row.get("CardNum"), text) || equals(row.get("CardCode"), code) ||
           toLower(row.get("Name").toText()).find(text) != std::string::npos;
  });
  if (table.empty()) throw Refusal("msgCantFindCardholder", options.text);
  table.print(std::cout, options.json);
}

void addValueOptions(CLI::App& command, CardTexts& texts) {
  command.add_option("--number", texts.number, "Its number on the controllers, 1 to 9999");
  command.add_option("--code", texts.code, "Its code, 1 to 8 characters 0 to 9 and A to F");
  command.add_option("--group", texts.group, "Name or number of its access group");
  command.add_option("--pin", texts.pin, "Its personal code, 1 to 9999; or none");
  command.add_option("--until", texts.until, "Its last valid day, 31/12/2027 or 2027-12-31; or none");
  command.add_option("--credit", texts.credit, "How many times it opens, 1 to 99; or none: always");
}

void addListOptions(CLI::App& command, ListOptions& options) {
  command.add_flag("--show-pins", options.showPins, "With the personal codes");
  command.add_flag("--json", options.json, "As a JSON array");
}

}  // namespace

void addCardCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("card", "Cards")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a card, which is to be sent then");
  auto added = std::make_shared<CardOptions>();
  add->add_option("NAME", added->texts.name, "Name of its holder")->required();
  addValueOptions(*add, added->texts);
  add->get_option("--number")->description("Its number, 1 to 9999; the first that no card had unless given");
  add->get_option("--code")->required();
  add->get_option("--group")->required();
  add->add_flag_callback(
      "--supervisor", [added] { added->texts.supervisor = "yes"; }, "It is a supervisor's card");
  add->footer(
      "Example:\n  voxa card add \"Ann Lee\" --code 4711 --group Staff --pin 2468 --until 31/12/2027");
  add->callback([&session, added] { addCard(session, *added); });

  auto* list = group->add_subcommand("list", "List the cards");
  auto listed = std::make_shared<ListOptions>();
  list->add_option("--group", listed->group, "Only those of this access group");
  list->add_flag("--deleted", listed->deleted, "The deleted cards instead");
  addListOptions(*list, *listed);
  list->footer("Example:\n  voxa card list --group Staff");
  list->callback([&session, listed] { listCards(session, *listed); });

  auto* find =
      group->add_subcommand("find", "List the cards of a number or code, or with a text in the name");
  auto found = std::make_shared<ListOptions>();
  find->add_option("TEXT", found->text, "Number, code or part of the name")->required();
  addListOptions(*find, *found);
  find->footer("Example:\n  voxa card find lee");
  find->callback([&session, found] { findCards(session, *found); });

  auto* set = group->add_subcommand("set", "Change a card, which is to be sent again then");
  auto changed = std::make_shared<CardOptions>();
  set->add_option("CARD", changed->card, "Number or name of the card")->required();
  set->add_option("--name", changed->texts.name, "Name of its holder");
  addValueOptions(*set, changed->texts);
  set->add_option("--supervisor", changed->texts.supervisor, "Whether it is a supervisor's card: yes or no");
  set->add_option("--valid", changed->texts.valid, "Whether it opens anything: yes or no");
  set->footer(
      "The controllers erase a card at once that gets another number or code, those that its new group does "
      "not\n"
      "reach one that gets another group; they have to answer.\n"
      "Example:\n  voxa card set 12 --group Visitors --valid no");
  set->callback([&session, changed] { setCard(session, *changed); });

  addCardClearingCommands(*group, session);
  addLastUnknownCommand(*group, session);
}

}  // namespace voxa::cli
