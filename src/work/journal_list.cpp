#include "work/journal_list.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "journal/journal.h"
#include "lines/code.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa {

namespace {

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

void requireType(const std::string& text) {
  constexpr const char* words[] = {"", "granted", "refused", "time", "rights", "unknown", "other"};
  const bool code = text.size() == 2 && text.find_first_not_of("0123456789") == std::string::npos;
  if (code || std::find(std::begin(words), std::end(words), text) != std::end(words)) return;
  throw Refusal("'" + text + "' is no type of transactions");
}

/// The rows of a time, by date.
std::unique_ptr<Recordset> rowsOf(Database& journal, const std::optional<DateTime>& since,
                                  const std::optional<DateTime>& until) {
  std::vector<std::pair<std::string, Value>> values;
  std::string declared;
  std::string condition;
  const auto limit = [&](const char* name, const char* compared, const std::optional<DateTime>& value) {
    if (!value) return;
    declared += std::string(values.empty() ? "parameters " : ", ") + name + " datetime";
    condition += std::string(values.empty() ? " where " : " and ") + "[Date] " + compared + " " + name;
    values.emplace_back(name, *value);
  };
  limit("pSince", ">=", since);
  limit("pUntil", "<", until);
  if (!declared.empty()) declared += "; ";
  return journal.openRecordset(declared + "select * from Journal" + condition + " order by [Date], Id",
                               values);
}

JournalRow read(const Recordset& row) {
  const auto text = [&](const char* column) {
    const Value value = row.get(column);
    return value.isNull() ? std::string() : value.toText();
  };
  const auto number = [&](const char* column) {
    const Value value = row.get(column);
    return value.isNull() ? 0 : value.toInt32();
  };
  JournalRow transaction;
  transaction.date = row.get("Date").toDateTime();
  transaction.stationId = number("StationId");
  transaction.station = text("StationName");
  transaction.readerId = number("ReaderId");
  transaction.reader = text("ReaderName");
  transaction.type = text("TransactionType");
  transaction.meaning = meaningOf(transaction.type);
  transaction.cardholder = text("CardholderName");
  transaction.data = text("TransactionData");
  if (transaction.meaning == TransactionMeaning::unknownCard) transaction.code = shownCode(transaction.data);
  return transaction;
}

bool isOfCard(const JournalRow& row, const std::string& card) {
  if (equalNoCase(row.cardholder, card)) return true;
  if (row.meaning == TransactionMeaning::unknownCard) {
    return withoutZeros(row.code) == withoutZeros(toUpper(card));
  }
  constexpr std::size_t width = 8;
  return row.meaning != TransactionMeaning::other && row.data.size() == width &&
         withoutZeros(row.data.substr(2, 4)) == withoutZeros(card);
}

}  // namespace

std::shared_ptr<Database> openedJournal(Installation& installation) {
  std::shared_ptr<Database> journal = installation.Journal().DB();
  if (journal && journal->isOpen()) return journal;
  throw Refusal("the journal of " + installation.paths().Chemin + " (Journal.MDB) cannot be opened");
}

JournalList::JournalList(Installation& installation, JournalFilter filter)
    : installation_(installation), filter_(std::move(filter)), journal_(openedJournal(installation)) {
  if (!filter_.since.empty()) since_ = writtenMoment(filter_.since, installation.clock());
  if (!filter_.until.empty()) until_ = behind(filter_.until, installation.clock());
  requireType(filter_.type);
}

bool JournalList::passes(const JournalRow& row) const {
  const std::string meaning = textOf(row.meaning);
  if (row.type != filter_.type && meaning.find(filter_.type) == std::string::npos) return false;
  if (!filter_.reader.empty() && !equalNoCase(row.reader, filter_.reader)) return false;
  return filter_.card.empty() || isOfCard(row, filter_.card);
}

std::size_t JournalList::each(const std::function<void(const JournalRow&)>& take) const {
  std::size_t count = 0;
  for (const auto rows = rowsOf(*journal_, since_, until_); !rows->eof(); rows->moveNext()) {
    const JournalRow row = read(*rows);
    if (!passes(row)) continue;
    ++count;
    take(row);
  }
  if (count == 0 && !filter_.reader.empty()) (void)readerNamed(installation_, filter_.reader);
  return count;
}

}  // namespace voxa
