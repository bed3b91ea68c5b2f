#include "work/card_import.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "platform/csv.h"
#include "platform/database/database.h"
#include "platform/error.h"
#include "platform/text.h"
#include "work/card_values.h"
#include "work/installation.h"
#include "work/refusal.h"
#include "work/report.h"

namespace voxa {

namespace {

struct Column {
  const char* name;
  std::optional<std::string> CardTexts::*text;
  bool mandatory;
};
constexpr Column columns[] = {
    {"number", &CardTexts::number, false}, {"name", &CardTexts::name, true},
    {"code", &CardTexts::code, true},      {"group", &CardTexts::group, true},
    {"pin", &CardTexts::pin, false},       {"until", &CardTexts::until, false},
    {"credit", &CardTexts::credit, false}, {"supervisor", &CardTexts::supervisor, false},
    {"valid", &CardTexts::valid, false}};

std::vector<const Column*> columnsOf(const CsvRecord& header) {
  std::vector<const Column*> order;
  for (const std::string& field : header.fields) {
    const std::string name = trimmed(field);
    const auto* column = std::find_if(std::begin(columns), std::end(columns),
                                      [&](const Column& known) { return equalNoCase(known.name, name); });
    if (column == std::end(columns)) throw Refusal("the header line names an unknown column: " + name);
    if (std::find(order.begin(), order.end(), column) != order.end()) {
      throw Refusal("the header line names a column twice: " + name);
    }
    order.push_back(column);
  }
  for (const Column& column : columns) {
    if (column.mandatory && std::find(order.begin(), order.end(), &column) == order.end()) {
      throw Refusal(std::string("the header line does not name the column ") + column.name);
    }
  }
  return order;
}

CardTexts textsOf(const CsvRecord& record, const std::vector<const Column*>& order) {
  if (!record.fault.empty()) throw Refusal(record.fault);
  if (record.fields.size() != order.size()) {
    throw Refusal(std::to_string(record.fields.size()) + " fields instead of " +
                  std::to_string(order.size()));
  }
  CardTexts texts;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (!isUtf8(record.fields[i])) throw Refusal(std::string(order[i]->name) + " is not UTF-8");
    const bool isName = order[i]->text == &CardTexts::name;
    std::string text = csvText(isName ? record.fields[i] : trimmed(record.fields[i]));
    if (order[i]->mandatory || !text.empty()) texts.*(order[i]->text) = std::move(text);
  }
  return texts;
}

/// Of the exception that is being handled.
std::string reason(Installation& installation) {
  try {
    throw;
  } catch (const Refusal& refusal) {
    if (refusal.mnemonic().empty()) return refusal.what();
    return installation.messages().read(refusal.mnemonic()) + " " + refusal.what();
  } catch (...) {
    const ErrorInfo error = describeCurrentException();
    return "Error " + std::to_string(error.number) + ": " + error.description;
  }
}

/// The cards of the records behind the header line; the lines that are not as they should be go into `bad`.
std::vector<CardValues> readCards(Installation& installation, const std::vector<CsvRecord>& records,
                                  std::vector<CardImport::BadLine>& bad) {
  if (records.empty()) throw Refusal("the file has no header line");
  if (!records.front().fault.empty()) throw Refusal("the header line has " + records.front().fault);
  const auto order = columnsOf(records.front());
  const GroupNames groups(installation);
  TakenByCards taken(installation);
  std::vector<CardValues> cards;
  for (auto record = records.begin() + 1; record != records.end(); ++record) {
    try {
      CardValues card(textsOf(*record, order), groups, installation.clock());
      taken.requireFree(card);
      taken.take(card, "line " + std::to_string(record->line));
      cards.push_back(std::move(card));
    } catch (...) {
      bad.push_back({record->line, reason(installation)});
    }
  }
  if (!bad.empty()) return {};
  // Behind all lines: one that has a number comes before those that take what is left.
  for (CardValues& card : cards) {
    if (card.number) continue;
    card.number = taken.freeNumber();
    taken.take(card, "");
  }
  return cards;
}

void addCards(Installation& installation, const std::vector<CardValues>& cards, Observer& observer) {
  Transaction transaction(installation.engine(), installation.database());
  const auto rows = installation.database().openRecordset("select * from Cardholders where Id = 0");
  std::size_t done = 0;
  for (const CardValues& card : cards) {
    rows->addNew();
    card.set(*rows);
    markWhole(*rows);
    rows->update();
    observer.progress("Importing", ++done, cards.size());
  }
  transaction.commit();
}

}  // namespace

CardImport importCards(Installation& installation, std::string_view table, Observer& observer) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (table.starts_with(byteOrderMark)) table.remove_prefix(byteOrderMark.size());
  CardImport import;
  const std::vector<CardValues> cards = readCards(installation, readCsv(table), import.badLines);
  addCards(installation, cards, observer);
  import.cards = cards.size();
  return import;
}

}  // namespace voxa
