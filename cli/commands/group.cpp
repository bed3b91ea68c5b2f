// voxa group: access groups, the doors that their cards open and when.

#include <iostream>

#include "commands.h"
#include "list_command.h"
#include "messages/strings.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "platform/ui/prompts.h"
#include "session.h"
#include "work/groups.h"

namespace voxa::cli {

namespace {

struct GroupOptions {
  std::string group, reader, program, moveTo;
};

void add(Session& session, const std::string& name) {
  session.open();
  const std::int16_t id = addGroup(session.library(), name);
  std::cout << "Access group " << id << ": " << name << '\n';
}

/// "Front (Office), Back (Office, the other side), Side (stays shut)".
std::string textOf(const std::vector<GroupRow::Door>& doors) {
  std::string text;
  for (const auto& [side, program] : doors) {
    text += (text.empty() ? "" : ", ") + side.reader + " (";
    switch (side.access) {
      case DoorSide::Access::opens:
        text += program + ")";
        break;
      case DoorSide::Access::otherSide:
        text += program + ", the other side)";
        break;
      case DoorSide::Access::shut:
        text += "stays shut)";
        break;
    }
  }
  return text;
}

void list(Session& session, bool json) {
  session.open();
  TableOutput table({"Id", "Name", "Cards", "Doors", "ToSend"});
  for (const GroupRow& group : listGroups(session.library())) {
    table.add({group.id, group.name, group.cards, textOf(group.doors), group.toSend});
  }
  table.print(std::cout, json);
}

void grant(Session& session, const GroupOptions& options) {
  session.openForSending();
  for (const auto& [shut, otherSide] :
       grantDoor(session.library(), options.group, options.reader, options.program)) {
    if (!shut.empty()) {
      session.strings().display("msgTwoWeeklyProgOnController", "voxa group grant", Value("(" + shut + ")"),
                                style::exclamation);
    }
    if (!otherSide.empty()) std::cerr << "Mind: " << otherSide << '\n';
  }
}

void revoke(Session& session, const GroupOptions& options) {
  session.openForSending();
  revokeDoor(session.library(), options.group, options.reader);
}

void remove(Session& session, const GroupOptions& options) {
  session.openForSending();
  deleteGroup(session.library(), options.group, options.moveTo);
}

void addLinkOptions(Command& command, GroupOptions& options) {
  command.add_option("GROUP", options.group, "Name or number of the access group")->required();
  command.add_option("READER", options.reader, "Name of the reader")->required();
}

}  // namespace

void addGroupCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("group", "Access groups")->require_subcommand(1);

  auto* adding = group->add_subcommand("add", "Add an access group, which opens no door yet");
  auto name = std::make_shared<std::string>();
  adding->add_option("NAME", *name, "Name of the new group")->required();
  adding->footer("Example:\n  voxa group add Staff");
  adding->callback([&session, name] { add(session, *name); });

  addListCommand(*group, session, "list", "List the access groups and the doors they open", "voxa group list",
                 list);

  auto* granting = group->add_subcommand("grant", "Let a group's cards open a door, or at other times");
  auto granted = std::make_shared<GroupOptions>();
  addLinkOptions(*granting, *granted);
  granting->add_option("--program", granted->program, "Name or number of a weekly program of family C")
      ->required();
  granting->footer(
      "A controller knows one weekly program for a card: its doors with another one stay shut. Positions 1 "
      "and 3, "
      "2\nand 4 are the two sides of one door: granting one side opens the other, too.\n"
      "Example:\n  voxa group grant Staff \"Front door\" --program Office");
  granting->callback([&session, granted] { grant(session, *granted); });

  auto* revoking = group->add_subcommand("revoke", "Take a door away from a group's cards");
  auto revoked = std::make_shared<GroupOptions>();
  addLinkOptions(*revoking, *revoked);
  revoking->footer(
      "A controller that loses its last door of the group erases the cards at once, and has to answer.\n"
      "Example:\n  voxa group revoke Staff \"Front door\"");
  revoking->callback([&session, revoked] { revoke(session, *revoked); });

  auto* deleting = group->add_subcommand("delete", "Delete an access group");
  auto deleted = std::make_shared<GroupOptions>();
  deleting->add_option("GROUP", deleted->group, "Name or number of the access group")->required();
  deleting->add_option("--move-cards-to", deleted->moveTo, "Access group that its cards are in from now on");
  deleting->footer("Example:\n  voxa group delete Visitors --move-cards-to Staff");
  deleting->callback([&session, deleted] { remove(session, *deleted); });
}

}  // namespace voxa::cli
