#include "work/card_values.h"

#include <algorithm>
#include <cmath>

#include "access/card_record.h"
#include "lines/code.h"
#include "lines/controller_date.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "work/held_codes.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/suggestions.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::int16_t lastNumber = 9999;
constexpr std::int16_t lastPin = 9999;
constexpr const char* none = "none";

std::string padded(std::string code) {
  code.insert(0, codeLength - std::min(codeLength, code.size()), '0');
  return code;
}

/// A row's code, which other programs spell as they like, as cardCode has it.
std::string storedCode(const Value& code) {
  return padded(toUpper(shownCode(code.toText())));
}

const std::string& filled(const std::string& what, const std::string& text) {
  if (text.empty()) throw Refusal("msgDBMandField", "(" + what + ")");
  return text;
}

Value numberOrNone(const std::string& what, const std::string& text, std::int16_t greatest) {
  if (equalNoCase(text, none)) return {};
  return numberWithin(what, text, 1, greatest);
}

/// Not repeated when it is refused: a personal code that was mistyped is nearly one.
Value personalCode(const std::string& text) {
  try {
    return numberOrNone("the personal code", text, lastPin);
  } catch (const Refusal&) {
    throw Refusal("the personal code is a number from 1 to 9999, or none");
  }
}

Value dayOrNone(const std::string& text, const Clock& clock) {
  if (equalNoCase(text, none)) return {};
  const auto day = parseDateTime(text, &clock);
  if (!day || day->days < 1 || toShortText(*day) != shortDate(*day)) {
    throw Refusal("the last day is a date such as 31/12/2027 or 2027-12-31, not " + text);
  }
  if (!controllersRead(*day, clock.now())) {
    throw Refusal("the controllers would take " + text +
                  " for a day of another century: the last day is within 50 years of today");
  }
  return *day;
}

std::string nameOf(const CardTexts& texts) {
  std::string name = nameWithRemark(*texts.name, texts.remark.value_or(""));
  if (texts.transliterate) name = nameInLatinLetters(name);
  return checkedName(name);
}

Value noteOf(const std::string& text) {
  constexpr std::size_t longestNote = 1000;
  if (text.empty() || equalNoCase(text, none)) return {};
  return checkedText("a note", text, longestNote);
}

template <typename Result, typename Read>
void read(std::optional<Result>& into, const std::optional<std::string>& text, Read convert) {
  if (text) into = convert(*text);
}

}  // namespace

std::int16_t cardNumber(const std::string& text) {
  return numberWithin("the card number", text, 1, lastNumber);
}

std::string cardCode(const std::string& text) {
  std::string code = toUpper(shownCode(filled("the code", text)));
  if (code.size() > codeLength || code.find_first_not_of("0123456789ABCDEF") != std::string::npos) {
    throw Refusal("a card code is 1 to 8 characters 0 to 9 and A to F, not " + text);
  }
  code = padded(code);
  if (code.find_first_not_of('0') == std::string::npos) throw Refusal("a card code is not zero");
  return code;
}

bool isCode(const Value& held, const std::string& code) {
  return !held.isNull() && storedCode(held) == code;
}

GroupNames::GroupNames(Installation& installation) {
  const auto rows = installation.database().openRecordset("select Id, Name from AccessGroups order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t id = rows->get("Id").toInt16();
    names_[id] = rows->get("Name").toText();
    ids_[toLower(names_[id])] = id;
  }
}

std::int16_t GroupNames::id(const std::string& nameOrNumber) const {
  if (const auto found = ids_.find(toLower(nameOrNumber)); found != ids_.end()) return found->second;
  if (isNumber(nameOrNumber)) {
    const std::int16_t number = number16("the access group", nameOrNumber);
    if (names_.contains(number)) return number;
  }
  std::vector<std::string> names;
  for (const auto& [id, name] : names_) names.push_back(name);
  throw notFound("msgCantFindAccessGroup", nameOrNumber, names);
}

CardValues::CardValues(const CardTexts& texts, const GroupNames& groups, const Clock& clock) {
  if (texts.name) name = nameOf(texts);
  read(number, texts.number, cardNumber);
  read(code, texts.code, cardCode);
  read(group, texts.group,
       [&](const std::string& text) { return groups.id(filled("the access group", text)); });
  read(pin, texts.pin, personalCode);
  read(until, texts.until, [&](const std::string& text) { return dayOrNone(text, clock); });
  read(credit, texts.credit, [](const std::string& text) { return numberOrNone("the credit", text, 99); });
  read(supervisor, texts.supervisor, [](const std::string& text) { return yesOrNo("supervisor", text); });
  read(valid, texts.valid, [](const std::string& text) { return yesOrNo("valid", text); });
  read(note, texts.note, noteOf);
}

void CardValues::set(Recordset& row) const {
  const auto mark = [&](CardPart part) { row.set(flagColumn(part), true); };
  const auto put = [&](const char* column, const auto& value, CardPart part) {
    if (!value) return;
    row.set(column, *value);
    mark(part);
  };
  if (name) row.set("Name", *name);
  if (note) row.set("Free", *note);
  if (number) {
    row.set("CardNum", *number);
    mark(cardCodePart);
  }
  put("CardCode", code, cardCodePart);
  put("AccessGroupId", group, accessGroupPart);
  if (group) mark(validatedPart);
  put("Validated", valid, validatedPart);
  put("PINCode", pin, pinCodePart);
  put("ValidationDate", until, validationDatePart);
  put("Credit", credit, creditPart);
  put("Supervisor", supervisor, supervisorPart);
}

bool isOver(Installation& installation, const CardValues& values) {
  return values.until && !values.until->isNull() &&
         values.until->toDateTime().days < std::floor(installation.clock().now().days);
}

void requireLastDayToCome(Installation& installation, const CardValues& values) {
  if (isOver(installation, values))
    throw Refusal("the last day " + values.until->toText() + " is over already");
}

void markWhole(Recordset& row) {
  for (const CardPart part : {cardCodePart, accessGroupPart, validatedPart}) row.set(flagColumn(part), true);
  if (!row.get("PINCode").isNull()) row.set(flagColumn(pinCodePart), true);
  if (!row.get("ValidationDate").isNull()) row.set(flagColumn(validationDatePart), true);
  if (!row.get("Credit").isNull()) row.set(flagColumn(creditPart), true);
  if (row.get("Supervisor").toBool()) row.set(flagColumn(supervisorPart), true);
}

void markWhole(Installation& installation, const std::set<std::int32_t>& numbers) {
  Transaction transaction(installation.engine(), installation.database());
  const auto cards = installation.database().openRecordset(
      "select * from Cardholders where Deleted = false and CardNum is not null");
  for (; !cards->eof(); cards->moveNext()) {
    if (!numbers.contains(cards->get("CardNum").toInt32())) continue;
    cards->edit();
    markWhole(*cards);
    cards->update();
  }
  transaction.commit();
}

TakenByCards::TakenByCards(Installation& installation, const std::set<std::int32_t>& changing)
    : installation_(installation) {
  const auto rows = installation.database().openRecordset(
      "select Id, CardNum, CardCode, Name, Deleted, CardCodeFlagD from Cardholders");
  for (; !rows->eof(); rows->moveNext()) {
    const Value number = rows->get("CardNum");
    if (!number.isNull()) everUsed_.insert(number.toInt32());
    if (changing.contains(rows->get("Id").toInt32())) continue;
    const bool deleted = rows->get("Deleted").toBool();
    const std::string name = rows->get("Name").toText();
    const std::string who = (deleted ? "a deleted card, " : "") + name;
    if (!number.isNull() && (!deleted || rows->get("CardCodeFlagD").toBool())) {
      numbers_[number.toInt32()] = who;
    }
    if (const Value code = rows->get("CardCode"); !code.isNull()) codes_[storedCode(code)] = who;
    names_[toLower(name)] = number.isNull() ? who : "card " + number.toText();
  }
}

void TakenByCards::requireFree(const CardValues& values) const {
  const auto check = [](const auto& taken, const auto& key, const char* mnemonic, const std::string& shown) {
    const auto found = taken.find(key);
    if (found == taken.end()) return;
    throw Refusal(mnemonic, "(" + shown + (found->second.empty() ? "" : ": " + found->second) + ")");
  };
  if (values.number) check(numbers_, *values.number, "msgCardNumInUse", std::to_string(*values.number));
  if (values.code) check(codes_, *values.code, "msgCardCodeInUse", *values.code);
  if (!values.name) return;
  const auto found = names_.find(toLower(*values.name));
  if (found != names_.end())
    throw Refusal("the name " + *values.name + " is already in use: " + found->second +
                  " has it. Two people of one name need a remark: " +
                  nameWithRemark(*values.name, "their department, say"));
}

void TakenByCards::take(const CardValues& values, const std::string& who) {
  if (values.number) {
    numbers_[*values.number] = who;
    everUsed_.insert(*values.number);
  }
  if (values.code) codes_[storedCode(*values.code)] = who;
  if (values.name) names_[toLower(*values.name)] = who;
}

std::int16_t TakenByCards::freeNumber() {
  constexpr std::int32_t atOnce = 256;
  while (nextFree_ <= lastNumber) {
    if (everUsed_.contains(nextFree_)) {
      ++nextFree_;
    } else if (nextFree_ < heldUpTo_) {
      return nextFree_;
    } else {  // a controller may know a card that no row tells of
      heldUpTo_ = nextFree_ + atOnce;
      everUsed_.merge(heldNumbers(installation_, nextFree_, heldUpTo_));
    }
  }
  throw Refusal("cards have all the numbers that controllers can hold (9999)");
}

namespace {

std::unique_ptr<Recordset> numbered(Installation& installation, std::int16_t number, bool deleted = false) {
  return installation.database().openRecordset(
      "parameters pNumber long, pDeleted bit; select * from Cardholders where CardNum = pNumber and Deleted "
      "= "
      "pDeleted",
      {{"pNumber", number}, {"pDeleted", deleted}});
}

}  // namespace

std::unique_ptr<Recordset> cardNumbered(Installation& installation, std::int16_t number) {
  auto rows = numbered(installation, number);
  if (rows->eof()) throw Refusal("msgCardNumNotInUse", std::to_string(number));
  return rows;
}

std::unique_ptr<Recordset> cardNamed(Installation& installation, const std::string& numberOrName,
                                     bool deleted) {
  constexpr std::size_t digitsOfANumber = 4;
  const bool digits = isNumber(numberOrName);
  if (digits && numberOrName.size() <= digitsOfANumber) {
    auto rows = numbered(installation, number16("the card number", numberOrName), deleted);
    if (!rows->eof()) return rows;
  }
  auto rows = installation.database().openRecordset(
      "parameters pName memo, pDeleted bit; select * from Cardholders where Deleted = pDeleted and Name = "
      "pName",
      {{"pName", numberOrName}, {"pDeleted", deleted}});
  if (!rows->eof()) return rows;
  // Names may be codes, which have 8 digits.
  if (!digits || numberOrName.size() >= codeLength) {
    // Who asks for the deleted ones has found none among the others.
    const std::string holders =
        "select Name from Cardholders" + std::string(deleted ? "" : " where Deleted = false");
    throw notFound("msgCantFindCardholder", numberOrName, namesOf(installation, holders));
  }
  rows = numbered(installation, cardNumber(numberOrName), deleted);
  if (rows->eof()) throw Refusal("msgCardNumNotInUse", numberOrName);
  return rows;
}

}  // namespace voxa
