#include "report/presentations.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "controllers/image.h"
#include "lines/code.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "report/figures.h"
#include "work/cards.h"
#include "work/installation.h"
#include "work/journal_list.h"
#include "work/look_up.h"

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

/// The numbers of the cards of an access group.
class GroupCards {
 public:
  GroupCards(Installation& installation, const std::string& group) : any_(group.empty()) {
    if (any_) return;
    for (const CardRow& card : listCards(installation, {.group = group})) {
      const std::int32_t number = card.number.isNull() ? 0 : card.number.toInt32();
      if (number > 0 && number <= greatestCardNumber) numbers_.set(static_cast<std::size_t>(number));
    }
  }
  [[nodiscard]] bool areAll() const { return any_; }
  /// data: of the transaction of a card that was known.
  [[nodiscard]] bool has(std::string_view transactionData) const {
    constexpr std::size_t place = 2;
    constexpr std::size_t digits = 4;
    if (any_) return true;
    std::size_t number = 0;
    for (const char digit : transactionData.substr(std::min(place, transactionData.size()), digits)) {
      if (digit < '0' || digit > '9') return false;
      number = number * 10 + static_cast<std::size_t>(digit - '0');
    }
    return numbers_.test(number);
  }

 private:
  bool any_;
  std::bitset<greatestCardNumber + 1> numbers_;
};

class Counter {
 public:
  Counter(Figures& figures, GroupCards cards)
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
    if (known ? !cards_.has(textOf(row[data])) : !cards_.areAll()) return;
    const DateTime moment = row[date].toDateTime();
    const auto minute = static_cast<std::int64_t>(std::llround(moment.days * minutesADay));
    const auto day = static_cast<std::size_t>(minute / minutesADay - figures_.firstDay);
    figures_.all.add(meaning);
    figures_.days.at(day).add(meaning);
    figures_.hours.at(static_cast<std::size_t>(minute / 60 % 24)).add(meaning);
    const std::string_view door = textOf(row[reader]);
    at(doors_, door).add(meaning);
    if (!known) addUnknown(textOf(row[data]), moment, door);
    if (people_ && meaning == TransactionMeaning::granted)
      addPerson(static_cast<int>(day), textOf(row[holder]), moment, door);
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
      figures_.unknownCards.push_back(std::move(card));
    }
    std::sort(figures_.unknownCards.begin(), figures_.unknownCards.end(),
              [](const PresentedUnknown& one, const PresentedUnknown& other) {
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
    PresentedUnknown& card = at(unknown_, code);
    if (card.times++ == 0 || card.last.days <= moment.days) {
      card.last = moment;
      card.door = door;
    }
  }

  void addPerson(int day, std::string_view name, DateTime moment, std::string_view door) {
    PersonDay& person = persons_[{day, std::string(name)}];
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
  GroupCards cards_;
  bool people_;
  ByText<Outcomes> doors_;
  ByText<PresentedUnknown> unknown_;
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
  Counter counter(figures, GroupCards(installation, figures.asked.group));
  const std::string& door = figures.asked.door;
  std::string statement = "parameters pSince datetime, pUntil datetime";
  Database::Parameters values = {{"pSince", figures.since}, {"pUntil", figures.until}};
  if (!door.empty()) statement += ", pDoor memo";
  statement += std::string("; select [Date], ReaderName, TransactionType, ") +
               (figures.asked.people ? "CardholderName" : "Null") +
               ", TransactionData from Journal where [Date] >= pSince and [Date] < pUntil";
  if (!door.empty()) {
    statement += " and ReaderName = pDoor";
    values.emplace_back("pDoor", door);
  }
  bool found = false;
  journal->visitRows(
      statement,
      [&](const Value* row) {
        found = true;
        counter.add(row);
        return true;
      },
      values);
  counter.finish();
  if (found) return;
  if (!door.empty()) (void)readerNamed(installation, door);
  findJournal(*journal, figures);
}

}  // namespace voxa
