// voxa group: access groups, the doors that their cards open and when.

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <set>

#include "access/access_group.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "commands.h"
#include "component.h"
#include "messages/strings.h"
#include "output/table_output.h"
#include "platform/ui/prompts.h"
#include "session.h"
#include "work/card_values.h"
#include "work/forget_cards.h"
#include "work/group_reach.h"
#include "work/links.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct GroupOptions {
  std::string group, reader, program, moveTo;
};

constexpr std::int16_t defaultGroup = 0;

void addGroup(Session& session, const std::string& name) {
  session.open();
  const std::int16_t id = session.qdb().AccessGroups().getFreeId();
  if (id == -1) throw Refusal("the installation has no free number for an access group");
  const auto rows = session.rows("select * from AccessGroups");
  rows->addNew();
  rows->set("Id", id);
  rows->set("Name", checkedName(name));
  storeRow(session.library(), *rows, "AccessGroups", "access group");
  std::cout << "Access group " << id << ": " << name << '\n';
}

/// The doors of a group as its cards meet them: "Front (Office), Back (Office, the other side), Side (stays
/// shut)".
std::string doorsText(Session& session, std::int16_t group,
                      const std::map<std::int16_t, std::string>& programs) {
  Database& database = session.qdb().database();
  std::string text;
  for (const GrantedController& controller : controllersOf(database, group)) {
    for (const DoorSide& side : sidesOf(database, group, controller)) {
      const auto program = programs.find(side.weeklyProgram);
      const std::string hours =
          program == programs.end() ? std::to_string(side.weeklyProgram) : program->second;
      text += (text.empty() ? "" : ", ") + side.reader + " (";
      switch (side.access) {
        case DoorSide::Access::opens:
          text += hours + ")";
          break;
        case DoorSide::Access::otherSide:
          text += hours + ", the other side)";
          break;
        case DoorSide::Access::shut:
          text += "stays shut)";
          break;
      }
    }
  }
  return text;
}

void listGroups(Session& session, bool json) {
  session.open();
  std::map<std::int16_t, std::string> programs;
  for (const auto rows = session.rows("select ProgNum, Name from WeeklyPrograms where ProgType = 'C'");
       !rows->eof(); rows->moveNext()) {
    programs[rows->get("ProgNum").toInt16()] = rows->get("Name").toText();
  }
  std::set<std::int16_t> marked;
  for (const auto links = session.rows("select AccessGroupId from AccGroupReaders where FlagD = true");
       !links->eof(); links->moveNext()) {
    marked.insert(links->get("AccessGroupId").toInt16());
  }
  std::map<std::int16_t, std::int32_t> cards;
  const auto holders = session.rows(
      "select AccessGroupId, count(*) as Cards from Cardholders where Deleted = false and AccessGroupId is "
      "not "
      "null group by AccessGroupId");
  for (; !holders->eof(); holders->moveNext()) {
    cards[holders->get("AccessGroupId").toInt16()] = holders->get("Cards").toInt32();
  }
  TableOutput table({"Id", "Name", "Cards", "Doors", "ToSend"});
  const auto rows = session.rows("select * from AccessGroups order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t id = rows->get("Id").toInt16();
    table.add({id, rows->get("Name"), cards[id], doorsText(session, id, programs),
               rows->get("FlagD").toBool() || marked.contains(id)});
  }
  table.print(std::cout, json);
}

/// Tells what a group's doors do that its links do not say: those of one controller under two programs stay
/// shut in part, and of a door whose one side is granted the other opens, too.
void tellOfDoors(Session& session, std::int16_t group) {
  Database& database = session.qdb().database();
  for (const GrantedController& controller : controllersOf(database, group)) {
    if (controller.twoPrograms()) {
      session.strings().display("msgTwoWeeklyProgOnController", "voxa group grant",
                                Value("(" + shutSides(database, group, controller) + ")"),
                                style::exclamation);
    }
    const std::string sides = openOtherSides(database, group, controller);
    if (!sides.empty()) std::cerr << "Mind: " << sides << '\n';
  }
}

void grant(Session& session, const GroupOptions& options) {
  session.openForSending();
  const std::int16_t group = GroupNames(session.library()).id(options.group);
  const std::int32_t reader = readerNamed(session.library(), options.reader)->get("Id").toInt32();
  const auto program = session.rows("select ProgNum, Name from WeeklyPrograms where ProgType = 'C'");
  moveToNumberOrName(*program, "ProgNum", options.program, "msgCantFindWeeklyProg");
  linkReader(session.library(), group, reader, program->get("ProgNum").toInt16());
  tellOfDoors(session, group);
}

void revoke(Session& session, const GroupOptions& options) {
  session.openForSending();
  const std::int16_t group = GroupNames(session.library()).id(options.group);
  const auto reader = readerNamed(session.library(), options.reader);
  const auto link = linkOf(session.library(), group, reader->get("Id").toInt32());
  if (link->eof()) {
    throw Refusal("the access group " + options.group + " does not open " + options.reader);
  }
  const std::int16_t station = reader->get("StationId").toInt16();
  const std::int16_t address = reader->get("ControllerAddress").toInt16();
  ForgetCards forget(session.library());
  for (const ReachedController& reached : reachOf(session.library(), group)) {
    const GrantedController& controller = reached.controller;
    if (controller.station != station || controller.address != address) continue;
    if (controller.doors.size() > 1) continue;  // it keeps the cards; the door is shut by their rights
    const CardsOfGroup cards = cardsOf(session.library(), group);
    forget.on({controller}, cards.live);
    forget.on({controller}, cards.deleted);
  }
  forget.send();
  Transaction transaction(session.library().engine(), session.qdb().database());
  link->remove();
  markGroup(session.library(), group);
  transaction.commit();
}

void moveCards(Session& session, std::int16_t from, std::int16_t to) {
  const auto cards = session.rows("select * from Cardholders where AccessGroupId = " + std::to_string(from));
  CardValues moved;
  moved.group = to;
  for (; !cards->eof(); cards->moveNext()) {
    cards->edit();
    if (cards->get("Deleted").toBool()) {
      // It opens nothing anywhere; it has to be in a group that there is.
      cards->set("AccessGroupId", defaultGroup);
    } else {
      moved.set(*cards);
      markWhole(*cards);
    }
    cards->update();
  }
}

void deleteGroup(Session& session, const GroupOptions& options) {
  session.openForSending();
  const GroupNames names(session.library());
  const std::int16_t group = names.id(options.group);
  if (group == defaultGroup) throw Refusal("the default access group cannot be deleted");
  const CardsOfGroup cards = cardsOf(session.library(), group);
  if (!cards.live.empty() && options.moveTo.empty()) {
    throw Refusal("msgDBDelRelated",
                  "(" + std::to_string(cards.live.size()) + " cards; see --move-cards-to)");
  }
  const std::int16_t target = options.moveTo.empty() ? defaultGroup : names.id(options.moveTo);
  if (target == group) throw Refusal("the cards cannot stay in the access group " + options.group);
  const auto before = reachOf(session.library(), group);
  ForgetCards forget(session.library());
  forget.on(without(before, reachOf(session.library(), target)), cards.live);
  forget.on(without(before, {}), cards.deleted);
  forget.send();
  Transaction transaction(session.library().engine(), session.qdb().database());
  moveCards(session, group, target);
  session.rows("select * from AccessGroups where Id = " + std::to_string(group))->remove();
  transaction.commit();
}

void addLinkOptions(CLI::App& command, GroupOptions& options) {
  command.add_option("GROUP", options.group, "Name or number of the access group")->required();
  command.add_option("READER", options.reader, "Name of the reader")->required();
}

}  // namespace

void addGroupCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("group", "Access groups")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add an access group, which opens no door yet");
  auto name = std::make_shared<std::string>();
  add->add_option("NAME", *name, "Name of the new group")->required();
  add->footer("Example:\n  voxa group add Staff");
  add->callback([&session, name] { addGroup(session, *name); });

  auto* list = group->add_subcommand("list", "List the access groups and the doors they open");
  auto json = std::make_shared<bool>(false);
  list->add_flag("--json", *json, "As a JSON array");
  list->footer("Example:\n  voxa group list");
  list->callback([&session, json] { listGroups(session, *json); });

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
  deleting->callback([&session, deleted] { deleteGroup(session, *deleted); });
}

}  // namespace voxa::cli
