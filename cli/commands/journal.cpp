// voxa journal: what happened at the doors. Its copies, index and checks are in journal_keeping.cpp.

#include <csignal>
#include <iostream>

#include "commands.h"
#include "journal_keeping.h"
#include "journal_output.h"
#include "output/command_line.h"
#include "platform/clock.h"
#include "session.h"
#include "work/journal_follow.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct JournalOptions {
  JournalFilter filter;
  std::string every = "10";
  bool unknown = false;
  bool follow = false;
  bool table = false;
  bool csv = false;
  bool json = false;

  [[nodiscard]] JournalForm form() const {
    if (json) return JournalForm::json;
    if (csv) return JournalForm::csv;
    return table ? JournalForm::table : JournalForm::sentences;
  }
};

volatile std::sig_atomic_t interrupted = 0;

/// Some send the signal to the program and to its group: the third one ends the program at once.
void interrupt(int signal) {
  interrupted = interrupted + 1;
  (void)std::signal(signal, interrupted > 1 ? SIG_DFL : interrupt);
}

/// Waits between two rounds; a second at a time, so that a key that ends it is soon obeyed.
void rest(Clock& clock, int seconds) {
  for (int second = 0; second < seconds && interrupted == 0; ++second) clock.wait(1);
}

void follow(Session& session, const JournalOptions& options) {
  constexpr std::int16_t most = 3600;
  const int every = numberWithin("the number of seconds", options.every, 1, most);
  // Without the right to the lines, which would keep all others out.
  session.open();
  JournalFollow journal(session.library(), options.filter);
  if (!options.filter.last.empty() || !options.filter.since.empty())
    printJournal(std::cout, JournalList(session.library(), options.filter), JournalForm::sentences);
  (void)std::signal(SIGINT, interrupt);
  (void)std::signal(SIGTERM, interrupt);
  const JournalFollow::Seen seen{[](const JournalRow& row) { std::cout << sentenceOf(row) << '\n'; },
                                 [](const std::string& sentence) { std::cerr << sentence << '\n'; },
                                 [] { return interrupted == 0; }};
  while (interrupted == 0 && std::cout.flush()) {
    journal.round(seen);
    std::cout.flush();
    rest(session.library().clock(), every);
  }
}

void showJournal(Session& session, JournalOptions& options) {
  if (options.unknown) options.filter.type = "unknown";
  if (options.follow) return follow(session, options);
  session.open();
  printJournal(std::cout, JournalList(session.library(), options.filter), options.form());
}

void addFilterOptions(Command& journal, JournalFilter& filter, bool& unknown) {
  journal.add_option(
      "--since", filter.since,
      "From this on: 24/12/2026, \"24/12/2026 18:05\", today, yesterday, monday to sunday (the "
      "last one, or today), -7d, -2w (from that day on), -12h, -30m");
  journal.add_option("--until", filter.until, "Up to this day or minute, it included; the same forms");
  journal.add_option("--last", filter.last, "Only so many, the newest by their date");
  journal.add_option("--person", filter.person,
                     "Only of this person, by name or card number, under all names and numbers he had");
  journal.add_option("--card", filter.card, "Only of the card of this number, holder's name or unknown code");
  journal.add_option("--door,--reader", filter.reader, "Only at this reader, under the names it had, too");
  journal.add_option("--station", filter.station, "Only of this station's readers");
  auto* type = journal.add_option(
      "--type,--outcome", filter.type,
      "Only of this type: granted, refused, time, rights, unknown, other, or its two digits");
  type->offers({"granted", "refused", "time", "rights", "unknown", "other"});
  journal.add_flag("--unknown", unknown, "Only cards that were not known, the same as --type unknown")
      ->excludes(type);
}

}  // namespace

void addJournalCommand(Command& app, Session& session) {
  auto* journal = app.add_subcommand("journal", "Show what happened at the doors, the oldest first");
  auto options = std::make_shared<JournalOptions>();
  addFilterOptions(*journal, options->filter, options->unknown);
  auto* following = journal->add_flag(
      "--follow", options->follow, "Read the controllers every so often, and show what comes, until Ctrl-C");
  journal->add_option("--every", options->every, "Seconds between two reads of --follow")
      ->capture_default_str()
      ->needs(following);
  auto* table = journal->add_flag("--table", options->table, "In columns, with the codes");
  auto* csv = journal->add_flag("--csv", options->csv, "As a table with commas");
  auto* json = journal->add_flag("--json", options->json, "As a JSON array");
  csv->excludes(table)->excludes(following);
  json->excludes(csv)->excludes(table)->excludes(following);
  table->excludes(following);
  journal->footer(
      "Of --follow: no line is dialled, other commands work meanwhile, and each driver call is in COM.LOG "
      "unless --no-log\nsays otherwise. A big journal answers sooner with 'voxa journal index'.\n"
      "Examples:\n  voxa journal --since monday --door \"Main entrance\" --type refused\n"
      "  voxa journal --person \"Ada Byron\" --last 10");
  addJournalKeeping(*journal, session);
  journal->callback([&session, options, journal] {
    if (!journal->hasSubcommand()) showJournal(session, *options);
  });
}

}  // namespace voxa::cli
