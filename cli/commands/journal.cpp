// voxa journal: what happened at the doors.

#include "journal/journal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <optional>

#include "app/qdb.h"
#include "commands.h"
#include "component.h"
#include "lines/code.h"
#include "moments.h"
#include "output/table_output.h"
#include "platform/csv.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "session.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/transaction_type.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct JournalOptions {
  std::string since, until, reader, card, type;
  bool csv = false;
  bool json = false;
};

/// The first moment behind what is written: a day is meant as a whole, a time as a whole minute.
DateTime behind(const std::string& text, const Clock& clock) {
  CivilTime end = toCivil(writtenMoment(text, clock));
  const bool day = text.find(':') == std::string::npos;
  end.second = 0;
  constexpr double minute = 1.0 / (24 * 60);
  return toDateTime(toCivil({toDateTime(end).days + (day ? 1 : minute)}));
}

/// "000012" is the card that "12" is.
std::string withoutZeros(const std::string& digits) {
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

class Filter {
 public:
  Filter(const JournalOptions& options, const Clock& clock) : options_(options) {
    if (!options.since.empty()) since_ = writtenMoment(options.since, clock);
    if (!options.until.empty()) until_ = behind(options.until, clock);
    requireType(options.type);
  }

  /// The rows by date. Nothing that a person wrote becomes part of the statement.
  [[nodiscard]] std::unique_ptr<Recordset> rows(Database& journal) const {
    std::vector<std::pair<std::string, Value>> values;
    std::string declared;
    std::string condition;
    const auto limit = [&](const char* name, const char* compared, const std::optional<DateTime>& value) {
      if (!value) return;
      declared += std::string(values.empty() ? "PARAMETERS [" : ", [") + name + "] DateTime";
      condition +=
          std::string(values.empty() ? " where [Date] " : " and [Date] ") + compared + " [" + name + "]";
      values.emplace_back(name, *value);
    };
    limit("since", ">=", since_);
    limit("until", "<", until_);
    if (!declared.empty()) declared += "; ";
    return journal.openRecordset(declared + "select * from Journal" + condition + " order by [Date], Id",
                                 values);
  }
  [[nodiscard]] bool wants(const Recordset& row) const {
    const std::string type = row.get("TransactionType").toText();
    const std::string meaning = textOf(meaningOf(type));
    if (type != options_.type && meaning.find(options_.type) == std::string::npos) return false;
    if (!options_.reader.empty() && !isText(row.get("ReaderName"), options_.reader)) return false;
    return options_.card.empty() || ofCard(row, meaningOf(type));
  }

 private:
  static void requireType(const std::string& text) {
    constexpr const char* words[] = {"", "granted", "refused", "time", "rights", "unknown", "other"};
    const bool code = text.size() == 2 && text.find_first_not_of("0123456789") == std::string::npos;
    if (code || std::find(std::begin(words), std::end(words), text) != std::end(words)) return;
    throw Refusal("'" + text + "' is no type of transactions");
  }
  static bool isText(const Value& value, const std::string& text) {
    return !value.isNull() && equalNoCase(value.toText(), text);
  }
  [[nodiscard]] bool ofCard(const Recordset& row, TransactionMeaning meaning) const {
    if (isText(row.get("CardholderName"), options_.card)) return true;
    const std::string data = row.get("TransactionData").toText();
    if (meaning == TransactionMeaning::unknownCard) {
      return withoutZeros(shownCode(data)) == withoutZeros(toUpper(options_.card));
    }
    constexpr std::size_t width = 8;
    return meaning != TransactionMeaning::other && data.size() == width &&
           withoutZeros(data.substr(2, 4)) == withoutZeros(options_.card);
  }

  const JournalOptions& options_;
  std::optional<DateTime> since_;
  std::optional<DateTime> until_;
};

const std::vector<std::string> columns = {"Date",    "Station",    "Reader", "Type",
                                          "Meaning", "Cardholder", "Data"};

std::vector<Value> cellsOf(const Recordset& row) {
  const auto name = [&](const char* column) {
    const Value value = row.get(column);
    return value.isNull() || value.toText().empty() ? Value() : value;
  };
  const std::string type = row.get("TransactionType").toText();
  const TransactionMeaning meaning = meaningOf(type);
  const std::string data = row.get("TransactionData").toText();
  return {formatDateTime(row.get("Date").toDateTime(), "dd/mm/yyyy hh:nn"),
          name("StationName"),
          name("ReaderName"),
          type,
          textOf(meaning),
          name("CardholderName"),
          meaning == TransactionMeaning::unknownCard ? shownCode(data) : data};
}

std::string csvLine(const std::vector<Value>& cells) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line += ',';
    if (!cells[i].isNull()) line += csvField(cells[i].toText());
  }
  return line + "\r\n";
}

void showJournal(Session& session, const JournalOptions& options) {
  session.open();
  const auto journal = session.qdb().Journal().DB();
  if (!journal) throw Refusal("the journal of " + session.folder() + " (Journal.MDB) cannot be opened");
  const Filter filter(options, session.clock());
  bool any = false;
  const auto eachRow = [&](const auto& row) {
    for (const auto rows = filter.rows(*journal); !rows->eof(); rows->moveNext()) {
      if (!filter.wants(*rows)) continue;
      any = true;
      row(cellsOf(*rows));
    }
  };
  if (options.csv) {
    std::cout << csvLine({columns.begin(), columns.end()});
    eachRow([](const std::vector<Value>& cells) { std::cout << csvLine(cells); });
  } else {
    printList(std::cout, columns, options.json, eachRow);
  }
  // A journal keeps the names of readers that are gone; a name that is in neither is a mistake.
  if (!any && !options.reader.empty()) (void)readerNamed(session.library(), options.reader);
}

}  // namespace

void addJournalCommand(CLI::App& app, Session& session) {
  auto* journal = app.add_subcommand("journal", "Show what happened at the doors, the oldest first");
  auto options = std::make_shared<JournalOptions>();
  journal->add_option("--since", options->since,
                      "From this day or minute on: 24/12/2026, \"24/12/2026 18:05\"");
  journal->add_option("--until", options->until, "Up to this day or minute, it included");
  journal->add_option("--reader", options->reader, "Only at this reader");
  journal->add_option("--card", options->card,
                      "Only of the card of this number, holder's name or unknown code");
  journal->add_option("--type", options->type,
                      "Only of this type: granted, refused, time, rights, unknown, other, or its two digits");
  auto* csv = journal->add_flag("--csv", options->csv, "As a table with commas");
  journal->add_flag("--json", options->json, "As a JSON array")->excludes(csv);
  journal->footer("Example:\n  voxa journal --since 2026-12-24 --reader \"Main entrance\" --type refused");
  journal->callback([&session, options] { showJournal(session, *options); });
}

}  // namespace voxa::cli
