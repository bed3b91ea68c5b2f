// voxa badge: how readers find the card number and the site code on a card.

#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>

#include "access/badge_format.h"
#include "app/qdb.h"
#include "commands.h"
#include "component.h"
#include "output/table_output.h"
#include "session.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct NumberColumn {
  const char* option;
  const char* title;
  const char* column;
  std::int16_t greatest;
  const char* help;
};
constexpr NumberColumn numberColumns[] = {
    {"--techno", "Techno", "Techno", 10, "Reading technology of a VRMD1, 0 to 10"},
    {"--card-position", "CardPosition", "Pos_Card", 32, "Position of the card number, 0 to 32"},
    {"--card-size", "CardSize", "Size_Card", 64, "Length of the card number, 0 to 64"},
    {"--site-position", "SitePosition", "Pos_Site", 99, "Position of the site code, 0 to 99"},
    {"--site-size", "SiteSize", "Size_Site", 64, "Length of the site code, 0 to 64"}};

struct BadgeOptions {
  std::string name;
  std::optional<std::string> newName, site;
  std::optional<std::string> numbers[std::size(numberColumns)];
  bool system = false;
  bool foreign = false;
};

std::string siteCode(const std::string& text) {
  constexpr std::size_t most = 8;
  if (text.size() <= most && text.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos)
    return text;
  throw Refusal("a site code has up to 8 hexadecimal digits, not " + text);
}

void setFields(Recordset& row, const BadgeOptions& options) {
  if (options.newName) row.set("Name", checkedName(*options.newName));
  if (options.site) row.set("Val_Site", siteCode(*options.site));
  if (options.system || options.foreign) row.set("SystemCard", options.system);
  for (std::size_t i = 0; i < std::size(numberColumns); ++i) {
    if (!options.numbers[i]) continue;
    const NumberColumn& number = numberColumns[i];
    row.set(number.column, numberWithin(number.option, *options.numbers[i], 0, number.greatest));
  }
  row.set("BadgeFormatFlagD", true);
}

void createFormats(Session& session) {
  session.open();
  if (hasBadgeFormats(session.library())) throw Refusal("the installation has badge formats already");
  session.library().showLater([&] {
    Transaction transaction(session.library().engine(), session.qdb().database());
    session.qdb().BadgeFormat().CreateTable();  // shows what it cannot make
    if (!hasBadgeFormats(session.library()) || badgeFormats(session.library())->eof()) {
      throw Refusal("the badge formats could not be created: nothing is changed");
    }
    transaction.commit();
  });
}

void addFormat(Session& session, BadgeOptions options) {
  session.open();
  const auto rows = badgeFormats(session.library());
  options.newName = options.name;
  if (!options.site) options.site = "";
  const std::int16_t id = session.qdb().BadgeFormat().getFreeId();
  if (id == -1) throw Refusal("the installation has no free number for a badge format");
  rows->addNew();
  rows->set("Id", id);
  setFields(*rows, options);
  storeRow(session.library(), *rows, "BadgeFormat", "badge format");
  std::cout << "Badge format " << id << ": " << options.name << '\n';
}

void setFormat(Session& session, const BadgeOptions& options) {
  session.open();
  const auto row = badgeFormats(session.library());
  moveToNumberOrName(*row, "Id", options.name, "msgCantFindBadgeFormat");
  row->edit();
  setFields(*row, options);
  storeRow(session.library(), *row, "BadgeFormat", "badge format");
}

// The default format as it was created, to be sent again.
void restoreDefault(Session& session) {
  session.open();
  (void)badgeFormats(session.library());
  Transaction transaction(session.library().engine(), session.qdb().database());
  Database& database = session.qdb().database();
  database.execute("delete from BadgeFormat where Id = 0");
  session.qdb().BadgeFormat().insertDefaultRecs();
  database.execute("update BadgeFormat set BadgeFormatFlagD = True where Id = 0");
  transaction.commit();
}

void listFormats(Session& session, bool json) {
  session.open();
  std::vector<std::string> titles = {"Id", "Name"};
  for (const NumberColumn& number : numberColumns) titles.emplace_back(number.title);
  for (const char* title : {"Site", "System", "ToSend"}) titles.emplace_back(title);
  TableOutput table(titles);
  for (const auto rows = badgeFormats(session.library()); !rows->eof(); rows->moveNext()) {
    std::vector<Value> cells = {rows->get("Id"), rows->get("Name")};
    for (const NumberColumn& number : numberColumns) cells.push_back(rows->get(number.column));
    for (const char* column : {"Val_Site", "SystemCard", "BadgeFormatFlagD"}) {
      cells.push_back(rows->get(column));
    }
    table.add(std::move(cells));
  }
  table.print(std::cout, json);
}

void addFormatOptions(CLI::App& command, BadgeOptions& options) {
  for (std::size_t i = 0; i < std::size(numberColumns); ++i) {
    command.add_option(numberColumns[i].option, options.numbers[i], numberColumns[i].help);
  }
  command.add_option("--site", options.site, "The site code, up to 8 hexadecimal digits");
  auto* system = command.add_flag("--system", options.system, "The cards are the system's own");
  command.add_flag("--foreign", options.foreign, "The cards are another system's")->excludes(system);
}

}  // namespace

void addBadgeCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("badge", "Badge formats of the readers")->require_subcommand(1);

  auto* create =
      group->add_subcommand("create", "Create the badge formats of this installation: the default");
  create->footer("Example:\n  voxa badge create");
  create->callback([&session] { createFormats(session); });

  auto* add = group->add_subcommand("add", "Add a badge format");
  auto added = std::make_shared<BadgeOptions>();
  add->add_option("NAME", added->name, "Name of the new format")->required();
  addFormatOptions(*add, *added);
  add->footer(
      "Example:\n  voxa badge add \"Site cards\" --site-position 2 --site-size 4 --card-position 6 "
      "--site 1A2F");
  add->callback([&session, added] { addFormat(session, *added); });

  auto* list = group->add_subcommand("list", "List the badge formats");
  auto json = std::make_shared<bool>(false);
  list->add_flag("--json", *json, "As a JSON array");
  list->footer("Example:\n  voxa badge list");
  list->callback([&session, json] { listFormats(session, *json); });

  auto* set = group->add_subcommand("set", "Change a badge format; it is to be sent again then");
  auto changed = std::make_shared<BadgeOptions>();
  set->add_option("FORMAT", changed->name, "Number or name of the format")->required();
  set->add_option("--name", changed->newName, "Its new name");
  addFormatOptions(*set, *changed);
  set->footer("Example:\n  voxa badge set \"Site cards\" --site 1A30");
  set->callback([&session, changed] { setFormat(session, *changed); });

  auto* restore = group->add_subcommand("default", "Put the default format back to what it was at first");
  restore->footer("Example:\n  voxa badge default");
  restore->callback([&session] { restoreDefault(session); });
}

}  // namespace voxa::cli
