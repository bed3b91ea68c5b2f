#include "work/card_import.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "files/conversions.h"
#include "lines/code.h"
#include "platform/csv.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"
#include "work/card_values.h"
#include "work/installation.h"
#include "work/refusal.h"

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

using Order = std::vector<const Column*>;

Order columnsOf(const CsvRecord& header, bool update) {
  Order order;
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
  const auto has = [&](const Column& column) {
    return std::find(order.begin(), order.end(), &column) != order.end();
  };
  for (const Column& column : columns) {
    if (column.mandatory && !update && !has(column)) {
      throw Refusal(std::string("the header line does not name the column ") + column.name);
    }
  }
  if (!has(columns[0]) && !has(columns[1]) && !has(columns[2]))
    throw Refusal(
        "the header line names none of the columns number, code and name, by which cards are found");
  return order;
}

CardTexts textsOf(const CsvRecord& record, const Order& order) {
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
    if (!text.empty()) texts.*(order[i]->text) = std::move(text);
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

/// A number or code as it is compared: without zeros in front.
std::string significant(const std::string& text) {
  const std::string digits = toUpper(shownCode(text));
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

/// The cards that are not deleted, by what a line may call them.
class KnownCards {
 public:
  explicit KnownCards(Installation& installation) : installation_(installation) {
    const auto rows = installation.database().openRecordset(
        "select Id, CardNum, CardCode, Name from Cardholders where Deleted = false");
    for (; !rows->eof(); rows->moveNext()) {
      const std::int32_t id = rows->get("Id").toInt32();
      if (const Value number = rows->get("CardNum"); !number.isNull())
        numbers_[significant(number.toText())].insert(id);
      if (const Value code = rows->get("CardCode"); !code.isNull())
        codes_[significant(code.toText())].insert(id);
      names_[toLower(rows->get("Name").toText())].insert(id);
    }
  }

  /// The row of the card that a line is about; none of a new one.
  [[nodiscard]] std::unique_ptr<Recordset> find(const CardTexts& texts) const {
    const auto in = [](const auto& known, const std::string& key) {
      const auto found = known.find(key);
      return found == known.end() ? std::set<std::int32_t>() : found->second;
    };
    std::set<std::int32_t> ids;
    if (texts.number) ids = in(numbers_, significant(*texts.number));
    const auto ofCode = texts.code ? in(codes_, significant(*texts.code)) : std::set<std::int32_t>();
    if (ids.empty()) ids = ofCode;
    if (ids.size() > 1 && ofCode.size() == 1 && ids.contains(*ofCode.begin())) ids = ofCode;
    if (!texts.number && !texts.code && texts.name) ids = in(names_, toLower(*texts.name));
    if (ids.size() > 1) throw Refusal("several cards have the number " + texts.number.value_or(""));
    if (ids.empty()) return nullptr;
    return installation_.database().openRecordset(
        "parameters pId long; select * from Cardholders where Id = pId", {{"pId", *ids.begin()}});
  }

 private:
  Installation& installation_;
  std::map<std::string, std::set<std::int32_t>> numbers_, codes_, names_;
};

/// Takes out what is as an export of the card has it, whether it could be stored anew or not.
void leaveOutSame(CardTexts& texts, const Recordset& card, const GroupNames& groups) {
  const auto text = [&](const char* column) {
    const Value value = card.get(column);
    return value.isNull() ? "" : value.toText();
  };
  const auto yes = [&](const char* column) { return card.get(column).toBool() ? "yes" : "no"; };
  const Value until = card.get("ValidationDate");
  const Value pin = card.get("PINCode");
  const std::pair<std::optional<std::string>*, std::string> fields[] = {
      {&texts.number, text("CardNum")},
      {&texts.name, text("Name")},
      {&texts.code, text("CardCode")},
      {&texts.group, groups.name(nullToInt(card.get("AccessGroupId")))},
      {&texts.pin, pin.isNull() ? "" : zeroPadded(pin.toInt32(), 4)},
      {&texts.until, until.isNull() ? "" : formatDateTime(until.toDateTime(), "yyyy-mm-dd")},
      {&texts.credit, text("Credit")},
      {&texts.supervisor, yes("Supervisor")},
      {&texts.valid, yes("Validated")}};
  for (const auto& [given, held] : fields) {
    if (*given && (**given == held || **given == trimmed(held))) given->reset();
  }
}

/// Takes out what the card has already. What is left changes it.
void leaveOutSame(CardValues& values, const Recordset& card) {
  const auto drop = [](auto& value, bool same) {
    if (value && same) value.reset();
  };
  const auto none = [&](const char* column) {
    const Value value = card.get(column);
    return value.isNull() || value.toInt32() == 0;
  };
  const auto sameNumber = [&](const std::optional<Value>& value, const char* column) {
    if (!value) return false;
    return value->isNull() ? none(column)
                           : !card.get(column).isNull() && value->toInt32() == card.get(column).toInt32();
  };
  const Value until = card.get("ValidationDate");
  drop(values.number,
       values.number && !card.get("CardNum").isNull() && *values.number == card.get("CardNum").toInt32());
  drop(values.name, values.name && card.get("Name").toText() == *values.name);
  drop(values.code, values.code && isCode(card.get("CardCode"), *values.code));
  drop(values.group, values.group && *values.group == nullToInt(card.get("AccessGroupId")));
  drop(values.pin, sameNumber(values.pin, "PINCode"));
  drop(values.credit, sameNumber(values.credit, "Credit"));
  drop(values.until, values.until && *values.until == until);
  drop(values.supervisor, values.supervisor && *values.supervisor == card.get("Supervisor").toBool());
  drop(values.valid, values.valid && *values.valid == card.get("Validated").toBool());
}

bool isEmpty(const CardValues& values) {
  return !values.number && !values.name && !values.code && !values.group && !values.pin && !values.until &&
         !values.credit && !values.supervisor && !values.valid;
}

}  // namespace

CardImport readCardTable(Installation& installation, std::string_view table, const CardTableFormat& format) {
  const std::string text = decodedText(table, format.encoding);
  const std::vector<CsvRecord> records = readCsv(text, format.delimiter.value_or(delimiterOf(text)));
  if (records.empty()) throw Refusal("the file has no header line");
  if (!records.front().fault.empty()) throw Refusal("the header line has " + records.front().fault);
  const Order order = columnsOf(records.front(), format.update);
  const GroupNames groups(installation);
  const KnownCards known(installation);
  CardImport import{CardChanges(installation), 0, {}};
  std::map<std::int32_t, std::size_t> lines;  // of the cards that change
  const auto readLine = [&](const CsvRecord& record) {
    CardTexts texts = textsOf(record, order);
    texts.transliterate = format.transliterate;
    const auto card = format.update ? known.find(texts) : nullptr;
    if (card == nullptr) {
      for (auto* needed : {&texts.name, &texts.code, &texts.group}) *needed = needed->value_or("");
      import.changes.add(CardValues(texts, groups, installation.clock()), record.line);
      return;
    }
    const auto [other, first] = lines.try_emplace(card->get("Id").toInt32(), record.line);
    if (!first) throw Refusal("this card is in line " + std::to_string(other->second) + " already");
    leaveOutSame(texts, *card, groups);
    CardValues values(texts, groups, installation.clock());
    leaveOutSame(values, *card);
    if (isEmpty(values)) {
      ++import.unchanged;
    } else {
      import.changes.change(*card, std::move(values), record.line);
    }
  };
  const auto note = [&](std::size_t line) { import.badLines.push_back({line, reason(installation)}); };
  for (auto record = records.begin() + 1; record != records.end(); ++record) {
    try {
      readLine(*record);
    } catch (...) {
      note(record->line);
    }
  }
  import.changes.visitClashes([&](std::size_t line, const Refusal& /*clash*/) { note(line);
});
std::sort(import.badLines.begin(), import.badLines.end(),
          [](const auto& one, const auto& other) { return one.line < other.line; });
return import;
}  // namespace voxa

}  // namespace voxa
