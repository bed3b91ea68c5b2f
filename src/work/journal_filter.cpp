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
#include "work/place_history.h"
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

void addType(const std::string& given, JournalCondition& condition) {
  const std::string type = toLower(given);
  if (type.empty()) return;
  if (type.size() == 2 && isNumber(type)) return condition.add("TransactionType = ?", "memo", type);
  constexpr const char* words[] = {"granted", "refused", "time", "rights", "unknown", "other"};
  if (std::find(std::begin(words), std::end(words), type) == std::end(words)) {
    throw Refusal("'" + given +
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

/// The rows of card numbers, in the language.
std::string ofNumbers(const std::vector<std::int32_t>& numbers) {
  std::string list;
  for (const std::int32_t number : numbers)
    list += (list.empty() ? "'" : ", '") + zeroPadded(number, numberDigits) + "'";
  return "TransactionType in (" + codesOf(ofCards) + ") and Mid(TransactionData, 3, 4) in (" + list + ")";
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
  std::string rows = "CardholderName = " + condition.declare("memo", journalName(card));
  if (isNumber(card) && withoutZeros(card).size() <= numberDigits)
    rows += " or (" + ofNumbers({std::stoi("0" + withoutZeros(card))}) + ")";
  if (const std::string code = ofCode(card); !code.empty()) rows += " or (" + code + ")";
  condition.add(rows);  // a code may have question marks
}

/// Rows of a place by its name, and by the number of the one that has the name now, since it has that number.
void addPlace(Installation& installation, const std::string& name, PlaceKind kind,
              JournalCondition& condition) {
  if (name.empty()) return;
  const std::string column = kind == PlaceKind::reader ? "Reader" : "Station";
  const auto now = installation.database().openRecordset(
      "parameters pName memo; select Id from " + column + "s where Name = pName", {{"pName", name}});
  std::string rows = column + "Name = ?";
  if (!now->eof()) {
    const std::int32_t id = now->get("Id").toInt32();
    rows += " or (" + column + "Id = " + std::to_string(id);
    if (const auto since = placeSince(installation, kind, id))
      rows += " and [Date] >= " + condition.declare("datetime", *since);
    rows += ")";
  }
  condition.add(rows, "memo", name);
}

}  // namespace

void addFilter(Installation& installation, const JournalFilter& filter, JournalCondition& condition) {
  addType(filter.type, condition);
  addCard(filter.card, condition);
  addPlace(installation, filter.reader, PlaceKind::reader, condition);
  addPlace(installation, filter.station, PlaceKind::station, condition);
}

void addNumbers(const std::vector<std::int32_t>& numbers, JournalCondition& condition) {
  condition.add(ofNumbers(numbers));
}

bool canBeCard(Installation& installation, const std::string& card) {
  const bool number = isNumber(card) && withoutZeros(card).size() <= numberDigits;
  return number || !ofCode(card).empty() || !CardOwners(installation).idsNamed(card).empty();
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
    for (const std::int32_t number : owners_.numbersOf(id)) {
      stored_.insert(zeroPadded(number, numberDigits));
      for (const std::int32_t other : owners_.idsOf(number)) {
        for (const std::string& name : owners_.namesOf(other)) stored_.insert(toLower(journalName(name)));
      }
    }
  }
  stored_.insert(names_.begin(), names_.end());
}

void JournalPerson::addTo(JournalCondition& condition) const {
  condition.addAnyOf("CardholderName", "memo", {stored_.begin(), stored_.end()});
}

bool JournalPerson::did(const JournalRow& row) const {
  if (const std::int32_t number = cardNumberIn(row.meaning, row.data); number != 0) {
    if (const std::int32_t doer = owners_.doer(number, row.date, row.cardholder); doer != 0)
      return ids_.contains(doer);
  }
  return names_.contains(toLower(row.cardholder));
}

}  // namespace voxa
