// voxa journal: what happened at the doors.

#include <iostream>

#include "commands.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "platform/datetime.h"
#include "session.h"
#include "work/journal_list.h"

namespace voxa::cli {

namespace {

struct JournalOptions {
  JournalFilter filter;
  bool csv = false;
  bool json = false;
};

const std::vector<std::string> columns = {"Date",    "Station",    "Reader", "Type",
                                          "Meaning", "Cardholder", "Data"};

std::vector<Cell> cellsOf(const JournalRow& row) {
  const auto name = [](const std::string& text) { return text.empty() ? Value() : Value(text); };
  return {formatDateTime(row.date, "dd/mm/yyyy hh:nn"),
          name(row.station),
          name(row.reader),
          row.type,
          textOf(row.meaning),
          name(row.cardholder),
          row.code.empty() ? row.data : row.code};
}

void showJournal(Session& session, const JournalOptions& options) {
  session.open();
  const JournalList list(session.library(), options.filter);
  const auto eachRow = [&](const auto& row) {
    list.each([&](const JournalRow& transaction) { row(cellsOf(transaction)); });
  };
  if (options.csv) return printCsv(std::cout, columns, eachRow);
  printList(std::cout, columns, options.json, eachRow);
}

}  // namespace

void addJournalCommand(Command& app, Session& session) {
  auto* journal = app.add_subcommand("journal", "Show what happened at the doors, the oldest first");
  auto options = std::make_shared<JournalOptions>();
  journal->add_option("--since", options->filter.since,
                      "From this day or minute on: 24/12/2026, \"24/12/2026 18:05\"");
  journal->add_option("--until", options->filter.until, "Up to this day or minute, it included");
  journal->add_option("--reader", options->filter.reader, "Only at this reader");
  journal->add_option("--card", options->filter.card,
                      "Only of the card of this number, holder's name or unknown code");
  journal->add_option("--type", options->filter.type,
                      "Only of this type: granted, refused, time, rights, unknown, other, or its two digits");
  auto* csv = journal->add_flag("--csv", options->csv, "As a table with commas");
  journal->add_flag("--json", options->json, "As a JSON array")->excludes(csv);
  journal->footer("Example:\n  voxa journal --since 2026-12-24 --reader \"Main entrance\" --type refused");
  journal->callback([&session, options] { showJournal(session, *options); });
}

}  // namespace voxa::cli
