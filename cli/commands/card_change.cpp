// voxa card add, lend, set, rename: what a card's row says.

#include <iostream>

#include "card_commands.h"
#include "card_differences.h"
#include "loss_question.h"
#include "output/command_line.h"
#include "output/progress.h"
#include "platform/database/database.h"
#include "session.h"
#include "work/cards.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct CardOptions {
  std::string card;
  CardTexts texts;
  std::vector<std::string> where;
  bool dryRun = false;
};

/// As it is stored: with its remark, in the letters that can be.
std::string nameOf(Session& session, std::int16_t number) {
  return cardNumbered(session.library(), number)->get("Name").toText();
}

void add(Session& session, const CardOptions& options) {
  session.openForSending();
  const std::int16_t number = addCard(session.library(), options.texts);
  std::cout << "Card " << number << ": " << nameOf(session, number) << '\n';
}

void lend(Session& session, const CardOptions& options) {
  session.openForSending();
  CardTexts texts = options.texts;
  if (texts.note) texts.note = "for " + *texts.note;
  const std::int16_t number = lendCard(session.library(), texts);
  std::cout << "Card " << number << ": " << nameOf(session, number) << ", until " << *texts.until << '\n';
}

std::string countOf(std::size_t cards) {
  return std::to_string(cards) + (cards == 1 ? " card" : " cards");
}

void setMany(Session& session, const CardOptions& options) {
  CardChanges changes = changesOf(session.library(), cardFilterOf(options.where), options.texts);
  if (options.dryRun) {
    printDifferences(changes);
    std::cout << "Nothing is changed: it would be " << countOf(changes.changed()) << '\n';
    return;
  }
  const std::string count = countOf(changes.changed());
  requireYes(session, "Change " + count + "?");
  {
    Progress progress;
    changes.carryOut(&progress);
  }
  std::cout << count << " changed, to be sent with 'voxa download'\n";
}

void set(Session& session, const CardOptions& options) {
  if (options.card.empty() == options.where.empty())
    throw Refusal("name one card, or say with --where which cards");
  session.openForSending();
  if (options.card.empty()) return setMany(session, options);
  if (options.dryRun) throw Refusal("--dry-run is for --where: it shows what many cards have now");
  changeCard(session.library(), options.card, options.texts);
  if (!options.texts.until) return;
  if (isOver(session.library(),
             CardValues({.until = options.texts.until}, GroupNames(session.library()), session.clock())))
    std::cerr << "Mind: that day is over: the card opens nothing once 'voxa download' has sent it\n";
}

void rename(Session& session, const CardOptions& options) {
  session.openForSending();
  changeCard(session.library(), options.card, options.texts);
}

void addNameOptions(Command& command, CardTexts& texts) {
  command.add_option("--remark", texts.remark, "What tells two people of one name apart: (Sales)");
  command.add_flag("--transliterate", texts.transliterate,
                   "Letters that the database cannot hold are written as Latin ones");
}

void addValueOptions(Command& command, CardTexts& texts) {
  command.add_option("--number", texts.number, "Its number on the controllers, 1 to 9999");
  command.add_option("--code", texts.code, "Its code, 1 to 8 characters 0 to 9 and A to F");
  command.add_option("--group", texts.group, "Name or number of its access group");
  command.add_option("--pin", texts.pin, "Its personal code, 1 to 9999; or none");
  command.add_option("--until", texts.until, "Its last valid day, 31/12/2027 or 2027-12-31; or none");
  command.add_option("--credit", texts.credit, "How many times it opens, 1 to 99; or none: always");
}

constexpr const char* helpOfNumber = "Its number, 1 to 9999; the first that no card had unless given";

void addLendCommand(Command& group, Session& session) {
  auto* lending = group.add_subcommand("lend", "Add a card for some days, to a visitor say");
  auto lent = std::make_shared<CardOptions>();
  CardTexts& texts = lent->texts;
  lending->add_option("NAME", texts.name, "Name of its holder, or of the card: \"Visitor 3\"")->required();
  lending->add_option("--code", texts.code, "Its code, 1 to 8 characters 0 to 9 and A to F")->required();
  lending->add_option("--group", texts.group, "Name or number of its access group")->required();
  lending->add_option("--until", texts.until, "Its last valid day, 31/12/2027 or 2027-12-31")->required();
  lending->add_option("--number", texts.number, helpOfNumber);
  lending->add_option("--pin", texts.pin, "Its personal code, 1 to 9999");
  lending->add_option("--credit", texts.credit, "How many times it opens, 1 to 99");
  lending->add_option("--for", texts.note, "Whom it is for; stays with the card as a note");
  addNameOptions(*lending, texts);
  lending->footer(
      "It opens nothing from the next day on. It is to be sent with 'voxa download'.\n"
      "Examples:\n"
      "  voxa card lend \"Visitor 3\" --code 52003 --group Visitors --until 24/12/2026 --for \"Ada Byron\"\n"
      "  voxa card lend \"Painter Ltd\" --code 52004 --group Workshop --until 2027-01-15 --credit 20");
  lending->callback([&session, lent] { lend(session, *lent); });
}

void addSetCommand(Command& group, Session& session) {
  auto* setting = group.add_subcommand("set", "Change a card, or many, to be sent again then");
  auto changed = std::make_shared<CardOptions>();
  setting->add_option("CARD", changed->card, "Number or name of the card");
  setting->add_option(
      "--where", changed->where,
      "All cards that are so: group=, door=, name=, valid=, supervisor=, expires-before= with "
      "a value, expired, never-used, pending; several conditions narrow it");
  setting->add_flag("--dry-run", changed->dryRun, "With --where: only show what would change");
  setting->add_option("--name", changed->texts.name, "Name of its holder");
  addNameOptions(*setting, changed->texts);
  addValueOptions(*setting, changed->texts);
  setting
      ->add_option("--supervisor", changed->texts.supervisor, "Whether it is a supervisor's card: yes or no")
      ->offers({"yes", "no"});
  setting->add_option("--valid", changed->texts.valid, "Whether it opens anything: yes or no")
      ->offers({"yes", "no"});
  setting->add_option("--note", changed->texts.note, "Any text, kept with the card; or none");
  setting->footer(
      "The controllers erase a card at once that gets another number or code, those that its new group does "
      "not\n"
      "reach one that gets another group; they have to answer. For a lost card see 'voxa card block'.\n"
      "Examples:\n"
      "  voxa card set 12 --group Visitors --until 31/12/2027\n"
      "  voxa card set --where group=Trainees --where expires-before=2027-01-01 --until 2027-06-30 "
      "--dry-run");
  setting->callback([&session, changed] { set(session, *changed); });
}

}  // namespace

void addCardChangeCommands(Command& group, Session& session) {
  auto* adding = group.add_subcommand("add", "Add a card, which is to be sent then");
  auto added = std::make_shared<CardOptions>();
  adding->add_option("NAME", added->texts.name, "Name of its holder")->required();
  addNameOptions(*adding, added->texts);
  addValueOptions(*adding, added->texts);
  adding->get_option("--number")->description(helpOfNumber);
  adding->get_option("--code")->required();
  adding->get_option("--group")->required();
  adding->add_flag_callback(
      "--supervisor", [added] { added->texts.supervisor = "yes"; }, "It is a supervisor's card");
  adding->add_option("--note", added->texts.note, "Any text, kept with the card");
  adding->footer(
      "Examples:\n"
      "  voxa card add \"Ann Lee\" --code 4711 --group Staff --pin 2468 --until 31/12/2027\n"
      "  voxa card add \"Ann Lee\" --remark Sales --code 4712 --group Staff");
  adding->callback([&session, added] { add(session, *added); });

  addLendCommand(group, session);
  addSetCommand(group, session);

  auto* renaming = group.add_subcommand("rename", "Give a card's holder another name");
  auto renamed = std::make_shared<CardOptions>();
  renaming->add_option("CARD", renamed->card, "Number or name of the card")->required();
  renaming->add_option("NEW", renamed->texts.name, "The new name")->required();
  addNameOptions(*renaming, renamed->texts);
  renaming->footer(
      "The journal is asked by either name from then on. No controller has to be told.\n"
      "Examples:\n  voxa card rename \"Ann Lee\" \"Ann Miller\"\n  voxa card rename 12 \"Łódź\" "
      "--transliterate");
  renaming->callback([&session, renamed] { rename(session, *renamed); });
}

}  // namespace voxa::cli
