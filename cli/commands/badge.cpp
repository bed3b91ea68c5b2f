// voxa badge: how readers find the card number and the site code on a card.

#include <iostream>

#include "commands.h"
#include "list_command.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "thing_commands.h"
#include "work/badge_formats.h"

namespace voxa::cli {

namespace {

struct NumberOption {
  const char* option;
  const char* title;
  const char* help;
};
constexpr NumberOption numberOptions[badgeNumberCount] = {
    {"--techno", "Techno", "Reading technology of a VRMD1, 0 to 10"},
    {"--card-position", "CardPosition", "Position of the card number, 0 to 32"},
    {"--card-size", "CardSize", "Length of the card number, 0 to 64"},
    {"--site-position", "SitePosition", "Position of the site code, 0 to 99"},
    {"--site-size", "SiteSize", "Length of the site code, 0 to 64"}};

struct BadgeOptions {
  std::string format;  // that is changed
  BadgeFormatTexts texts;
  bool system = false;
  bool foreign = false;

  [[nodiscard]] BadgeFormatTexts read() const {
    BadgeFormatTexts all = texts;
    if (system || foreign) all.systemCard = system;
    return all;
  }
};

void addFormat(Session& session, const BadgeOptions& options) {
  session.open();
  const std::int16_t id = addBadgeFormat(session.library(), options.read());
  std::cout << "Badge format " << id << ": " << *options.texts.name << '\n';
}

std::vector<std::string> columns() {
  std::vector<std::string> titles = {"Id", "Name"};
  for (const NumberOption& number : numberOptions) titles.emplace_back(number.title);
  titles.insert(titles.end(), {"Site", "System", "ToSend"});
  return titles;
}

std::vector<Cell> cellsOf(const BadgeFormatRow& format) {
  std::vector<Cell> cells = {format.id, format.name};
  cells.insert(cells.end(), format.numbers.begin(), format.numbers.end());
  cells.insert(cells.end(), {format.site, format.systemCard, format.toSend});
  return cells;
}

void listFormats(Session& session, bool json) {
  session.open();
  TableOutput table(columns());
  for (const BadgeFormatRow& format : listBadgeFormats(session.library())) table.add(cellsOf(format));
  table.print(std::cout, json);
  if (table.empty())
    std::cerr << "There are no badge formats yet: 'voxa badge create' makes the default one\n";
}

void addFormatOptions(Command& command, BadgeOptions& options) {
  for (std::size_t i = 0; i < badgeNumberCount; ++i) {
    command.add_option(numberOptions[i].option, options.texts.numbers.at(i), numberOptions[i].help);
  }
  command.add_option("--site", options.texts.site, "The site code, up to 8 hexadecimal digits");
  auto* system = command.add_flag("--system", options.system, "The cards are the system's own");
  command.add_flag("--foreign", options.foreign, "The cards are another system's")->excludes(system);
}

}  // namespace

void addBadgeCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("badge", "Badge formats of the readers")->require_subcommand(1);

  auto* create =
      group->add_subcommand("create", "Create the badge formats of this installation: the default");
  create->footer("Examples:\n  voxa badge create\n  voxa --dir plant badge create");
  create->callback([&session] {
    session.open();
    createBadgeFormats(session.library());
  });

  auto* add = group->add_subcommand("add", "Add a badge format");
  auto added = std::make_shared<BadgeOptions>();
  add->add_option("NAME", added->texts.name, "Name of the new format")->required();
  addFormatOptions(*add, *added);
  add->footer(
      "Examples:\n  voxa badge add \"Site cards\" --site-position 2 --site-size 4 --card-position 6 "
      "--site 1A2F\n  voxa badge add \"Own cards\" --system --techno 5 --card-position 6");
  add->callback([&session, added] { addFormat(session, *added); });

  addListCommand(*group, session, "list", "List the badge formats", "voxa badge list", listFormats);
  addShowCommand(*group, session, "FORMAT", "badge format",
                 "Examples:\n  voxa badge show \"Site cards\"\n  voxa badge show 0 --json",
                 [&session](const std::string& name, bool json) {
                   printOne(std::cout, columns(), cellsOf(findBadgeFormat(session.library(), name)), json);
                 });

  auto* set = group->add_subcommand("set", "Change a badge format; it is to be sent again then");
  auto changed = std::make_shared<BadgeOptions>();
  set->add_option("FORMAT", changed->format, "Number or name of the format")->required();
  set->add_option("--name", changed->texts.name, "Its new name");
  addFormatOptions(*set, *changed);
  set->footer(
      "Examples:\n  voxa badge set \"Site cards\" --site 1A30\n  voxa badge set 1 --card-position 8 "
      "--foreign");
  set->callback([&session, changed] {
    session.open();
    changeBadgeFormat(session.library(), changed->format, changed->read());
  });

  auto* restore = group->add_subcommand("default", "Put the default format back to what it was at first");
  restore->footer("Examples:\n  voxa badge default\n  voxa --dir plant badge default");
  restore->callback([&session] {
    session.open();
    restoreDefaultBadgeFormat(session.library());
  });

  addRenameCommand(
      *group, session, "FORMAT", "badge format",
      "Examples:\n  voxa badge rename \"Site cards\" \"Cards of 2026\"\n  voxa badge rename 1 Old",
      [&session](const std::string& name, const std::string& newName) {
        changeBadgeFormat(session.library(), name, {.name = newName});
      });
  addDeleteCommand(*group, "FORMAT", "badge format", "", "",
                   "Readers that were sent it keep it until they are sent another one.\n"
                   "Examples:\n  voxa badge delete Old\n  voxa badge delete 1",
                   [&session](const std::string& name, const std::string& /*moveTo*/) {
                     session.open();
                     const BadgeFormatRow format = findBadgeFormat(session.library(), name);
                     deleteBadgeFormat(session.library(), name);
                     std::cout << "Deleted: badge format " << format.id << " (" << format.name << ")\n";
                   });
}

}  // namespace voxa::cli
