// voxa access: who may open what, by the rows and by what the controllers hold.

#include <iostream>

#include "commands.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "platform/clock.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "session.h"
#include "work/access_questions.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct AccessOptions {
  std::string card, door, at;
  bool json = false;
};

DateTime momentOf(Session& session, const AccessOptions& options) {
  return options.at.empty() ? session.clock().now() : writtenMoment(options.at, session.clock());
}

Value orNone(const std::string& text) {
  return text.empty() ? Value() : Value(text);
}

/// "08:00-12:00 13:00-18:00": for programs each by itself, null when it did not come to that.
Cell hoursOf(const std::string& hours) {
  if (hours.empty()) return {};
  std::vector<std::string> intervals;
  std::string_view rest = hours;
  while (!rest.empty() && hours != "none") intervals.emplace_back(takeUntil(rest, ' '));
  return intervals;
}

/// For a person the first columns, which say it all in words.
void print(const std::vector<AccessAnswer>& answers, bool json) {
  constexpr std::size_t shown = 6;
  std::vector<std::string> columns = {
      "Card",      "Name",         "Door",      "Opens",           "Reason",       "Known", "Controller",
      "LineInUse", "At",           "OtherSide", "WeeklyProgram",   "DailyProgram", "Hours", "Holiday",
      "Credit",    "PersonalCode", "Certain",   "ControllerOpens", "OldCode"};
  if (!json) columns.resize(shown);
  TableOutput table(columns);
  for (const AccessAnswer& answer : answers) {
    std::vector<Cell> cells = {
        answer.card,
        answer.name,
        answer.door,
        answer.opens,
        reasonText(answer),
        knownText(answer),
        answer.controllerName,
        answer.lineInUse,
        Cell::moment(answer.at),
        answer.otherSide,
        orNone(answer.weeklyProgram),
        orNone(answer.dailyProgram),
        hoursOf(answer.hours),
        orNone(answer.holiday),
        answer.credit == 0 ? Value() : Value(answer.credit),
        answer.personalCode,
        answer.known == Sure::yes,
        answer.controllerOpens == Sure::unsaid ? Value() : Value(answer.controllerOpens == Sure::yes),
        orNone(answer.oldCode)};
    cells.resize(columns.size());
    table.add(std::move(cells));
  }
  table.print(std::cout, json);
}

void say(const AccessAnswer& answer) {
  std::cout << formatDateTime(answer.at, "dd/mm/yyyy hh:nn") << ": " << sentenceOf(answer) << '\n';
  if (answer.opens && answer.personalCode) std::cout << "The reader may ask for the personal code\n";
  std::cout << "Known at " << whereKnown(answer) << '\n';
}

void who(Session& session, const AccessOptions& options) {
  session.open();
  print(AccessQuestions(session.library()).whoOpens(options.door, momentOf(session, options)), options.json);
}

void what(Session& session, const AccessOptions& options) {
  session.open();
  print(AccessQuestions(session.library()).whatOpens(options.card, momentOf(session, options)), options.json);
}

void check(Session& session, const AccessOptions& options) {
  session.open();
  const AccessAnswer answer =
      AccessQuestions(session.library()).mayOpen(options.card, options.door, momentOf(session, options));
  options.json ? print({answer}, true) : say(answer);
  if (!answer.opens || answer.known != Sure::yes) session.leaveToPerson();
}

}  // namespace

void addAccessCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("access", "Who may open what, and whether the controllers know it")
                    ->require_subcommand(1);
  const auto add = [&](const std::string& name, const std::string& help, const std::string& footer,
                       void (*run)(Session&, const AccessOptions&)) {
    auto* command = group->add_subcommand(name, help);
    auto options = std::make_shared<AccessOptions>();
    if (run != who) command->add_option("CARD", options->card, "Number or name of the card")->required();
    if (run != what) command->add_option("DOOR", options->door, "Name of the reader")->required();
    command->add_option("--at", options->at, "When: \"24/12/2026 18:05\", 2026-12-24; now unless given");
    command->add_flag("--json", options->json, "As a JSON array, with all that decides");
    command->footer(footer);
    command->callback([&session, options, run] { run(session, *options); });
  };
  add("who", "List the cards that open a door, then or at other hours",
      "Cards that are not to open it are listed when the controller still opens to them, or may.\n"
      "Examples:\n  voxa access who \"Front door\"\n  voxa access who \"Front door\" --at \"24/12/2026 "
      "18:05\"",
      who);
  add("what", "List the doors of a card's access group, and which of them it opens",
      "Examples:\n  voxa access what \"Ann Lee\"\n  voxa access what 12 --at 2026-12-25 --json", what);
  add("check", "Tell whether a card opens a door, and why",
      "Exits with 0 when it opens and the controller is known to hold all that decides, else with 3.\n"
      "Examples:\n  voxa access check \"Ann Lee\" \"Front door\"\n  voxa access check 12 \"Front door\" --at "
      "\"24/12/2026 18:05\"",
      check);
}

}  // namespace voxa::cli
