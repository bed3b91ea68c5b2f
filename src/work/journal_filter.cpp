#include "work/journal_filter.h"

#include <algorithm>
#include <vector>

#include "journal/journal_rows.h"
#include "lines/code.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "work/installation.h"
#include "work/journal_condition.h"
#include "work/journal_list.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::size_t numberDigits = 4;  // of a card's number in a transaction

using Meanings = std::vector<TransactionMeaning>;

/// "'00', '02'": the codes of meanings.
std::string codesOf(const Meanings& meanings) {
  std::string codes;
  for (int code = 0; code < 100; ++code) {
    const std::string text = zeroPadded(code, 2);
    if (std::find(meanings.begin(), meanings.end(), meaningOf(text)) == meanings.end()) continue;
    codes += (codes.empty() ? "'" : ", '") + text + "'";
  }
  return codes;
}

const Meanings ofCards = {TransactionMeaning::granted, TransactionMeaning::refusedByTime,
                          TransactionMeaning::refusedByRights};

void addType(const std::string& type, JournalCondition& condition) {
  if (type.empty()) return;
  if (type.size() == 2 && isNumber(type)) return condition.add("TransactionType = ?", "memo", type);
  constexpr const char* words[] = {"granted", "refused", "time", "rights", "unknown", "other"};
  if (std::find(std::begin(words), std::end(words), type) == std::end(words)) {
    throw Refusal("'" + type +
                  "' is no type of transactions: granted, refused, time, rights, unknown, other, "
                  "or two digits");
  }
  Meanings meanings;
  for (const auto meaning : {TransactionMeaning::granted, TransactionMeaning::refusedByTime,
                             TransactionMeaning::refusedByRights, TransactionMeaning::unknownCard}) {
    const bool meant = std::string_view(textOf(meaning)).find(type) != std::string_view::npos;
    if (meant || type == "other") meanings.push_back(meaning);
  }
  condition.add("TransactionType " + std::string(type == "other" ? "not " : "") + "in (" + codesOf(meanings) +
                ")");
}

std::string withoutZeros(const std::string& digits) {
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

/// The rows of a card number, in the language.
std::string ofNumber(const std::string& number) {
  return "TransactionType in (" + codesOf(ofCards) + ") and Mid(TransactionData, 3, 4) = '" +
         zeroPadded(std::stoi("0" + number), numberDigits) + "'";
}

/// The rows of an unknown card's code; "" for a text that is none.
std::string ofCode(const std::string& text) {
  std::string code = withoutZeros(text);
  if (code.empty() || code.size() > codeLength) return "";
  try {
    code = controllerCode(code);
  } catch (const Error&) {
    return "";
  }
  code.insert(0, codeLength - code.size(), '0');
  return "TransactionType in (" + codesOf({TransactionMeaning::unknownCard}) + ") and TransactionData = '" +
         code + "'";
}

void addCard(const std::string& card, JournalCondition& condition) {
  if (card.empty()) return;
  std::string rows = "CardholderName = ?";
  if (isNumber(card) && withoutZeros(card).size() <= numberDigits)
    rows += " or (" + ofNumber(withoutZeros(card)) + ")";
  if (const std::string code = ofCode(card); !code.empty()) rows += " or (" + code + ")";
  condition.add(rows, "memo", card);
}

/// Rows of a place by its name, and by the number of the one that has the name now.
void addPlace(const std::string& name, const char* column, const std::unique_ptr<Recordset>& now,
              JournalCondition& condition) {
  std::string rows = std::string(column) + "Name = ?";
  if (!now->eof()) rows += " or " + std::string(column) + "Id = " + now->get("Id").toText();
  condition.add(rows, "memo", name);
}

std::unique_ptr<Recordset> rowsNamed(Installation& installation, const std::string& table,
                                     const std::string& name) {
  return installation.database().openRecordset(
      "parameters pName memo; select Id from " + table + " where Name = pName", {{"pName", name}});
}

}  // namespace

void addFilter(Installation& installation, const JournalFilter& filter, JournalCondition& condition) {
  addType(filter.type, condition);
  addCard(filter.card, condition);
  if (!filter.reader.empty())
    addPlace(filter.reader, "Reader", rowsNamed(installation, "Readers", filter.reader), condition);
  if (!filter.station.empty())
    addPlace(filter.station, "Station", rowsNamed(installation, "Stations", filter.station), condition);
}

JournalPerson::JournalPerson(Installation& installation, const std::string& nameOrNumber)
    : owners_(installation) {
  for (const std::int32_t id : owners_.idsNamed(nameOrNumber)) ids_.insert(id);
  if (isNumber(nameOrNumber) && withoutZeros(nameOrNumber).size() <= numberDigits) {
    const std::int32_t number = std::stoi(nameOrNumber);
    if (const std::int32_t id = owners_.ownerAt(number, installation.clock().now()); id != 0) ids_ = {id};
  }
  if (ids_.empty()) names_.insert(toLower(journalName(nameOrNumber)));
  for (const std::int32_t id : ids_) {
    for (const std::string& name : owners_.namesOf(id)) names_.insert(toLower(journalName(name)));
    for (const std::int32_t number : owners_.numbersOf(id)) numbers_.insert(zeroPadded(number, numberDigits));
  }
}

void JournalPerson::addTo(JournalCondition& condition) const {
  std::vector<Value> names(names_.begin(), names_.end());
  names.insert(names.end(), numbers_.begin(), numbers_.end());
  condition.addAnyOf("CardholderName", "memo", names);
}

bool JournalPerson::has(const std::string& name) const {
  return names_.contains(toLower(name));
}

bool JournalPerson::did(const JournalRow& row) const {
  constexpr std::size_t width = 8;
  const std::string number = row.data.size() == width ? row.data.substr(2, numberDigits) : "";
  const bool isOfCard = row.meaning != TransactionMeaning::other &&
                        row.meaning != TransactionMeaning::unknownCard && isNumber(number);
  const std::int32_t owner = isOfCard ? owners_.ownerAt(std::stoi(number), row.date) : 0;
  if (ids_.contains(owner)) return has(row.cardholder) || row.cardholder == number;
  if (!has(row.cardholder)) return false;
  // Somebody else of that name had the number then.
  const std::vector<std::string> names = owner == 0 ? std::vector<std::string>() : owners_.namesOf(owner);
  return std::none_of(names.begin(), names.end(), [&](const std::string& name) {
    return equalNoCase(journalName(name), row.cardholder);
  });
}

}  // namespace voxa
