// voxa group: access groups, the doors that their cards open and when.

#include <iostream>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "messages/strings.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "platform/ui/prompts.h"
#include "session.h"
#include "thing_commands.h"
#include "work/groups.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct DoorOptions {
  std::string group, reader, program;
  std::vector<std::string> doors;

  /// The reader that stands alone and those behind --door.
  [[nodiscard]] std::vector<std::string> readers() const {
    std::vector<std::string> all = doors;
    if (!reader.empty()) all.insert(all.begin(), reader);
    if (all.empty()) throw Refusal("name a door, or several with --door");
    return all;
  }
};

void add(Session& session, const std::string& name) {
  session.open();
  const std::int16_t id = addGroup(session.library(), name);
  std::cout << "Access group " << id << ": " << name << '\n';
}

std::string joined(const std::vector<std::string>& texts) {
  std::string text;
  for (const std::string& one : texts) text += (text.empty() ? "" : ", ") + one;
  return text;
}

std::vector<std::string> textsOf(const std::vector<GroupRow::Door>& doors) {
  std::vector<std::string> texts;
  for (const GroupRow::Door& door : doors) texts.push_back(doorText(door));
  return texts;
}

nlohmann::ordered_json jsonOf(const std::vector<GroupRow::Door>& doors) {
  auto list = nlohmann::ordered_json::array();
  for (const auto& [side, program] : doors) {
    const char* const access = side.access == DoorSide::Access::opens       ? "opens"
                               : side.access == DoorSide::Access::otherSide ? "other side"
                                                                            : "shut";
    list.push_back({{"Door", side.reader}, {"Program", program}, {"Access", access}});
  }
  return list;
}

const std::vector<std::string> columns = {"Id", "Name", "Cards", "Doors", "Lifts", "ToSend"};

std::vector<Cell> cellsOf(const GroupRow& group, Cell doors) {
  return {group.id, group.name, group.cards, std::move(doors), group.lifts, group.toSend};
}

void list(Session& session, const std::string& door, bool json) {
  session.open();
  TableOutput table(columns);
  for (const GroupRow& group : listGroups(session.library(), door)) {
    table.add(cellsOf(group, {joined(textsOf(group.doors)), jsonOf(group.doors)}));
  }
  table.print(std::cout, json);
}

void show(Session& session, const std::string& name, bool json) {
  const GroupRow group = findGroup(session.library(), name);
  printOne(std::cout, columns, cellsOf(group, eachBelow(textsOf(group.doors), jsonOf(group.doors))), json);
}

void copy(Session& session, const std::string& group, const std::string& name) {
  session.open();
  const std::int16_t id = copyGroup(session.library(), group, name);
  std::cout << "Access group " << id << ": " << name << '\n';
}

void grant(Session& session, const DoorOptions& options) {
  session.openForSending();
  for (const auto& [shut, otherSide] :
       grantDoors(session.library(), options.group, options.readers(), options.program)) {
    if (!shut.empty()) {
      session.strings().display("msgTwoWeeklyProgOnController", "voxa group grant", Value("(" + shut + ")"),
                                style::exclamation);
    }
    if (!otherSide.empty()) std::cerr << "Mind: " << otherSide << '\n';
  }
}

void revoke(Session& session, const DoorOptions& options) {
  session.openForSending();
  const std::vector<std::string> open = revokeDoors(session.library(), options.group, options.readers());
  if (!open.empty())
    std::cerr << "Mind: still open to its cards until 'voxa download': " << joined(open) << '\n';
}

void remove(Session& session, const std::string& name, const std::string& moveTo) {
  session.openForSending();
  const DeletedGroup deleted = deleteGroup(session.library(), name, moveTo);
  const GroupRow& group = deleted.group;
  std::cout << "Deleted: access group " << group.id << " (" << group.name << ")";
  if (!group.doors.empty()) std::cout << ", which opened " << joined(textsOf(group.doors));
  std::cout << '\n';
  if (deleted.movedTo.empty()) return;
  std::cout << "Cards that are in " << deleted.movedTo << " from now on: " << group.cards << '\n';
  if (!deleted.gains.empty()) std::cout << "They also open now: " << joined(deleted.gains) << '\n';
}

void addDoorOptions(Command& command, DoorOptions& options) {
  command.add_option("GROUP", options.group, "Name or number of the access group")->required();
  command.add_option("READER", options.reader, "Name of the reader");
  command.add_option("--door", options.doors, "Name of a reader; each use adds one");
}

void addDoorCommands(Command& group, Session& session) {
  auto* granting = group.add_subcommand("grant", "Let a group's cards open doors, or at other times");
  auto granted = std::make_shared<DoorOptions>();
  addDoorOptions(*granting, *granted);
  granting->add_option("--program", granted->program, "Name or number of a weekly program of family C")
      ->required();
  granting->footer(
      "All of the doors are granted or none. A controller knows one weekly program for a card: its doors "
      "with "
      "another\none stay shut. Positions 1 and 3, 2 and 4 are the two sides of one door: granting one side "
      "opens the other, too.\n"
      "Examples:\n  voxa group grant Staff \"Front door\" --program Office\n"
      "  voxa group grant Staff --door \"Front door\" --door \"Back door\" --program Office");
  granting->callback([&session, granted] { grant(session, *granted); });

  auto* revoking = group.add_subcommand("revoke", "Take doors away from a group's cards");
  auto revoked = std::make_shared<DoorOptions>();
  addDoorOptions(*revoking, *revoked);
  revoking->footer(
      "A controller that loses its last door of the group erases the cards at once, and has to answer.\n"
      "Examples:\n  voxa group revoke Staff \"Front door\"\n"
      "  voxa group revoke Staff --door \"Front door\" --door \"Back door\"");
  revoking->callback([&session, revoked] { revoke(session, *revoked); });
}

}  // namespace

void addGroupCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("group", "Access groups")->require_subcommand(1);

  auto* adding = group->add_subcommand("add", "Add an access group, which opens no door yet");
  auto name = std::make_shared<std::string>();
  adding->add_option("NAME", *name, "Name of the new group")->required();
  adding->footer("Examples:\n  voxa group add Staff\n  voxa group add \"Night shift\"");
  adding->callback([&session, name] { add(session, *name); });

  auto* copying =
      group->add_subcommand("copy", "Add a group with the doors and lifts of another, and no cards");
  auto copied = std::make_shared<std::pair<std::string, std::string>>();
  copying->add_option("GROUP", copied->first, "Name or number of the access group")->required();
  copying->add_option("NEW", copied->second, "Name of the new group")->required();
  copying->footer("Examples:\n  voxa group copy Staff \"Staff and lab\"\n  voxa group copy 1 Trainees");
  copying->callback([&session, copied] { copy(session, copied->first, copied->second); });

  auto* listing = group->add_subcommand("list", "List the access groups and the doors they open");
  auto door = std::make_shared<std::string>();
  auto json = std::make_shared<bool>(false);
  listing->add_option("--door", *door, "Only groups that have to do with this reader");
  listing->add_flag("--json", *json, "As a JSON array");
  listing->footer("Examples:\n  voxa group list\n  voxa group list --door \"Front door\"");
  listing->callback([&session, door, json] { list(session, *door, *json); });

  addShowCommand(*group, session, "GROUP", "access group",
                 "Examples:\n  voxa group show Staff\n  voxa group show 1 --json",
                 [&session](const std::string& shown, bool asJson) { show(session, shown, asJson); });

  auto* set = group->add_subcommand("set", "Change an access group");
  auto renamed = std::make_shared<std::pair<std::string, std::string>>();
  set->add_option("GROUP", renamed->first, "Name or number of the access group")->required();
  set->add_option("--name", renamed->second, "Its new name")->required();
  set->footer("Examples:\n  voxa group set Staff --name Employees\n  voxa group set 1 --name Employees");
  set->callback([&session, renamed] {
    session.open();
    renameGroup(session.library(), renamed->first, renamed->second);
  });
  addRenameCommand(*group, session, "GROUP", "access group",
                   "Examples:\n  voxa group rename Staff Employees\n  voxa group rename 1 Employees",
                   [&session](const std::string& old, const std::string& newName) {
                     renameGroup(session.library(), old, newName);
                   });

  addDoorCommands(*group, session);

  addDeleteCommand(
      *group, "GROUP", "access group", "--move-to,--move-cards-to",
      "Access group that its cards are in from now on",
      "Controllers that the cards lose erase them at once, and have to answer.\n"
      "Examples:\n  voxa group delete Visitors\n  voxa group delete Trainees --move-to Staff",
      [&session](const std::string& gone, const std::string& moveTo) { remove(session, gone, moveTo); });
}

}  // namespace voxa::cli
