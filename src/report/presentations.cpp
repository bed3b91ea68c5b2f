#include "report/presentations.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "controllers/image.h"
#include "journal/journal_rows.h"
#include "lines/code.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "report/figures.h"
#include "work/card_history.h"
#include "work/cards.h"
#include "work/installation.h"
#include "work/journal_condition.h"
#include "work/journal_filter.h"
#include "work/journal_list.h"
#include "work/look_up.h"
#include "work/place_history.h"
#include "work/transaction_type.h"

namespace voxa {

namespace {

constexpr int minutesADay = 24 * 60;
/// Of so many unknown codes each is counted for itself, so that no journal fills the memory.
constexpr std::size_t mostCodes = 10'000;

/// The columns of a row, in the order of the statement.
enum Column : std::size_t { date, reader, type, holder, data };

std::string_view textOf(const Value& value) {
  const auto* text = std::get_if<std::string>(&value.data());
  return text == nullptr ? std::string_view() : std::string_view(*text);
}

/// Texts are found by what they are, without a copy.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};
template <typename T>
using ByText = std::unordered_map<std::string, T, TextHash, std::equal_to<>>;

template <typename T>
T& at(ByText<T>& all, std::string_view text) {
  const auto found = all.find(text);
  return found != all.end() ? found->second : all[std::string(text)];
}

/// Whose transactions count, and under which name.
class Cards {
 public:
  Cards(Installation& installation, const std::string& group) : owners_(installation), any_(group.empty()) {
    if (any_) return;
    for (const CardRow& card : listCards(installation, {.group = group})) {
      const std::int32_t number = card.number.isNull() ? 0 : card.number.toInt32();
      if (number > 0 && number <= greatestCardNumber) numbers_.set(static_cast<std::size_t>(number));
      ids_.insert(card.id);
    }
  }
  [[nodiscard]] bool areAll() const { return any_; }
  /// number: of the card that was known, 0 for none. A number that was another's before is that one's then.
  [[nodiscard]] bool have(std::int32_t number, DateTime moment) const {
    if (any_) return true;
    if (owners_.hasPast(number)) return ids_.contains(owners_.ownerAt(number, moment));
    return numbers_.test(static_cast<std::size_t>(number));
  }
  /// Who had the number then, when the history tells, whoever's name was stored.
  [[nodiscard]] std::string nameOf(std::int32_t number, DateTime moment, std::string_view stored) const {
    std::string name(stored);
    if (!owners_.hasPast(number)) return name;
    const std::int32_t doer = owners_.doer(number, moment, name);
    const std::vector<std::string> names = owners_.namesOf(doer);
    const bool his = std::any_of(names.begin(), names.end(),
                                 [&](const std::string& one) { return equalNoCase(journalName(one), name); });
    return his || names.empty() ? name : names.front();
  }

 private:
  CardOwners owners_;
  bool any_;
  std::bitset<greatestCardNumber + 1> numbers_;
  std::set<std::int32_t> ids_;
};

class Counter {
 public:
  Counter(Figures& figures, Cards cards)
      : figures_(figures), cards_(std::move(cards)), people_(figures.asked.people) {
    figures_.firstDay = static_cast<int>(std::floor(figures.since.days));
    figures_.days.resize(static_cast<std::size_t>(std::ceil(figures.until.days)) -
                         static_cast<std::size_t>(figures_.firstDay));
  }

  void add(const Value* row) {
    const TransactionMeaning meaning = meaningOf(textOf(row[type]));
    if (meaning == TransactionMeaning::other) {
      figures_.others += cards_.areAll() ? 1 : 0;
      return;
    }
    const bool known = meaning != TransactionMeaning::unknownCard;
    const DateTime moment = row[date].toDateTime();
    const std::int32_t number = cardNumberIn(meaning, textOf(row[data]));
    if (known ? !cards_.have(number, moment) : !cards_.areAll()) return;
    const auto minute = static_cast<std::int64_t>(std::llround(moment.days * minutesADay));
    const auto day = static_cast<std::size_t>(minute / minutesADay - figures_.firstDay);
    figures_.all.add(meaning);
    figures_.days.at(day).add(meaning);
    figures_.hours.at(static_cast<std::size_t>(minute / 60 % 24)).add(meaning);
    const std::string_view door = textOf(row[reader]);
    at(doors_, door).add(meaning);
    if (!known) addUnknown(textOf(row[data]), moment, door);
    if (people_ && meaning == TransactionMeaning::granted)
      addPerson(static_cast<int>(day), cards_.nameOf(number, moment, textOf(row[holder])), moment, door);
  }

  void finish() {
    for (const auto& [name, outcomes] : doors_) figures_.doors.push_back({name, outcomes});
    std::sort(figures_.doors.begin(), figures_.doors.end(), [](const auto& one, const auto& other) {
      const auto key = [](const DoorFigure& door) {
        return std::pair(door.outcomes.presentations(), door.name);
      };
      return key(one).first != key(other).first ? key(one).first > key(other).first
                                                : key(one).second < key(other).second;
    });
    for (auto& [code, card] : unknown_) {
      card.code = shownCode(code);
      figures_.unknownCodes.push_back(std::move(card));
    }
    std::sort(figures_.unknownCodes.begin(), figures_.unknownCodes.end(),
              [](const UnknownCode& one, const UnknownCode& other) {
                return one.last.days != other.last.days ? one.last.days > other.last.days
                                                        : one.code < other.code;
              });
    for (auto& [key, person] : persons_) {
      person.day = key.first + figures_.firstDay;
      person.name = key.second;
      figures_.people.push_back(std::move(person));
    }
  }

 private:
  void addUnknown(std::string_view code, DateTime moment, std::string_view door) {
    if (unknown_.size() >= mostCodes && unknown_.find(code) == unknown_.end()) {
      ++figures_.unknownNotListed;
      return;
    }
    UnknownCode& card = at(unknown_, code);
    if (card.times++ == 0 || card.last.days <= moment.days) {
      card.last = moment;
      card.door = door;
    }
  }

  void addPerson(int day, const std::string& name, DateTime moment, std::string_view door) {
    PersonDay& person = persons_[{day, name}];
    if (person.times == 0 || moment.days < person.first.days) {
      person.first = moment;
      person.firstDoor = door;
    }
    if (person.times++ == 0 || moment.days >= person.last.days) {
      person.last = moment;
      person.lastDoor = door;
    }
  }

  Figures& figures_;
  Cards cards_;
  bool people_;
  ByText<Outcomes> doors_;
  ByText<UnknownCode> unknown_;
  std::map<std::pair<int, std::string>, PersonDay> persons_;
};

/// When no row is within the time: where there are some.
void findJournal(Database& journal, Figures& figures) {
  journal.visitRows("select Min([Date]), Max([Date]) from Journal", [&](const Value* row) {
    if (row[0].isNull()) return false;
    figures.journalFrom = row[0].toDateTime();
    figures.journalTo = row[1].toDateTime();
    return false;
  });
}

}  // namespace

void countPresentations(Installation& installation, Figures& figures) {
  const std::shared_ptr<Database> journal = openedJournal(installation);
  Counter counter(figures, Cards(installation, figures.asked.group));
  const std::string& door = figures.asked.door;
  JournalCondition condition;
  condition.add("[Date] >= ?", "datetime", figures.since);
  condition.add("[Date] < ?", "datetime", figures.until);
  addFilter(installation, {.reader = door}, condition);
  bool found = false;
  journal->visitRows(
      condition.statement(std::string("[Date], ReaderName, TransactionType, ") +
                          (figures.asked.people ? "CardholderName" : "Null") + ", TransactionData"),
      [&](const Value* row) {
        found = true;
        counter.add(row);
        return true;
      },
      condition.values());
  counter.finish();
  if (found) return;
  if (!door.empty() && !wasPlace(installation, PlaceKind::reader, door))
    (void)readerNamed(installation, door);
  findJournal(*journal, figures);
}

}  // namespace voxa
