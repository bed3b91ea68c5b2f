#include "work/journal_list.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "journal/journal.h"
#include "lines/code.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/journal_hours.h"
#include "work/look_up.h"
#include "work/moments.h"
#include "work/place_history.h"
#include "work/refusal.h"
#include "work/suggestions.h"
#include "work/words.h"

namespace voxa {

namespace {

/// So many rows are held at once: a day of a big installation.
constexpr std::size_t partRows = 50'000;

constexpr const char* columns =
    "Id, [Date], StationId, StationName, ReaderId, ReaderName, TransactionType, CardholderName, "
    "TransactionData";

JournalRow read(const Value* row) {
  const auto text = [&](std::size_t i) { return row[i].isNull() ? std::string() : row[i].toText(); };
  const auto number = [&](std::size_t i) { return row[i].isNull() ? 0 : row[i].toInt32(); };
  JournalRow transaction;
  std::size_t i = 0;
  transaction.id = number(i++);
  if (!row[i].isNull()) transaction.date = row[i].toDateTime();
  transaction.stationId = number(++i);
  transaction.station = text(++i);
  transaction.readerId = number(++i);
  transaction.reader = text(++i);
  transaction.type = text(++i);
  transaction.meaning = meaningOf(transaction.type);
  transaction.cardholder = text(++i);
  transaction.data = text(++i);
  if (transaction.meaning == TransactionMeaning::unknownCard) transaction.code = shownCode(transaction.data);
  return transaction;
}

bool isEarlier(const JournalRow& a, const JournalRow& b) {
  return a.date.days != b.date.days ? a.date.days < b.date.days : a.id < b.id;
}

void sortByDate(std::vector<JournalRow>& rows) {
  std::sort(rows.begin(), rows.end(), isEarlier);
}

/// Keeps the newest rows of many.
class Newest {
 public:
  explicit Newest(std::size_t most) : most_(most) {}
  void add(JournalRow row) {
    rows_.push_back(std::move(row));
    if (rows_.size() >= 2 * most_) cut();
  }
  std::vector<JournalRow> take() {
    cut();
    return std::move(rows_);
  }

 private:
  void cut() {
    if (rows_.size() <= most_) return;
    const auto end = rows_.begin() + static_cast<std::ptrdiff_t>(most_);
    std::nth_element(rows_.begin(), end, rows_.end(),
                     [](const auto& a, const auto& b) { return isEarlier(b, a); });
    rows_.erase(end, rows_.end());
  }
  std::size_t most_;
  std::vector<JournalRow> rows_;
};

}  // namespace

std::shared_ptr<Database> openedJournal(Installation& installation) {
  std::shared_ptr<Database> journal = installation.Journal().DB();
  if (journal && journal->isOpen()) return journal;
  throw Refusal("the journal of " + installation.paths().Chemin + " (Journal.MDB) cannot be opened");
}

JournalList::JournalList(Installation& installation, JournalFilter filter)
    : installation_(installation), filter_(std::move(filter)), journal_(openedJournal(installation)) {
  const Clock& clock = installation.clock();
  std::optional<DateTime> from;
  if (!filter_.since.empty()) {
    from = writtenSpan(filter_.since, clock).from;
    condition_.add("[Date] >= ?", "datetime", *from);
  }
  if (!filter_.until.empty()) {
    const DateTime behind = writtenSpan(filter_.until, clock).behind;
    if (from && from->days >= behind.days)
      throw Refusal("the time from " + filter_.since + " until " + filter_.until + " ends before it begins");
    condition_.add("[Date] < ?", "datetime", behind);
  }
  if (filter_.after) condition_.add("Id > ?", "long", *filter_.after);
  addFilter(installation, filter_, condition_);
  if (!filter_.person.empty()) person_.emplace(installation, filter_.person).addTo(condition_);
  if (filter_.last.empty()) return;
  const std::int32_t last = number32("the number of transactions", filter_.last);
  if (last < 1 || last > mostLast) {
    throw Refusal("the last 1 to " + std::to_string(mostLast) + " transactions can be asked for, not " +
                  filter_.last + ": name a time with --since and --until for more");
  }
  last_ = static_cast<std::size_t>(last);
}

void JournalList::requireKnown() const {
  if (!filter_.reader.empty() && !wasPlace(installation_, PlaceKind::reader, filter_.reader))
    (void)readerNamed(installation_, filter_.reader);
  if (!filter_.station.empty() && !wasPlace(installation_, PlaceKind::station, filter_.station))
    (void)stationNamed(installation_, filter_.station);
  const auto requireCard = [&](const std::string& name, bool known) {
    if (known) return;
    throw Refusal("there is nobody called " + name + " among the cards or in the journal" +
                  didYouMean(name, namesOf(installation_, "select Name from Cardholders")));
  };
  requireCard(filter_.person, !person_ || person_->isKnown());
  requireCard(filter_.card, filter_.card.empty() || canBeCard(installation_, filter_.card));
  if (!isNumber(filter_.type) || meaningOf(filter_.type) != TransactionMeaning::other) return;
  bool any = false;
  JournalCondition ofType;
  ofType.add("TransactionType = ?", "memo", filter_.type);
  scanJournal(*journal_, ofType, "Id", ScanOrder::any, [&](const Value*) {
    any = true;
    return false;
  });
  if (!any) throw Refusal("nothing in the journal is of the type " + filter_.type);
}

bool JournalList::passes(const JournalRow& row) const {
  return !person_ || person_->did(row);
}

void JournalList::visit(const JournalCondition& condition, ScanOrder order,
                        const std::function<bool(JournalRow row)>& take) const {
  scanJournal(*journal_, condition, columns, order, [&](const Value* values) {
    JournalRow row = read(values);
    return !passes(row) || take(std::move(row));
  });
}

/// Without an index of dates the whole journal has to be looked through, since any row can have any date.
/// Most of the newest are among those that were read last: these give a date, and no row before it counts.
std::vector<JournalRow> JournalList::newest() const {
  std::vector<double> dates;
  const std::size_t most = 4 * last_ + 1000;
  Newest readLast(last_);
  visit(condition_, ScanOrder::lastReadFirst, [&](JournalRow row) {
    dates.push_back(row.date.days);
    readLast.add(std::move(row));
    return dates.size() < most;
  });
  if (dates.size() < most) return readLast.take();  // there are no others
  JournalCondition condition = condition_;
  const auto least = dates.begin() + static_cast<std::ptrdiff_t>(last_ - 1);
  std::nth_element(dates.begin(), least, dates.end(), std::greater<>());
  if (*least > 0) condition.add("[Date] >= ?", "datetime", DateTime{*least});
  Newest newest(last_);
  visit(condition, ScanOrder::any, [&](JournalRow row) {
    newest.add(std::move(row));
    return true;
  });
  return newest.take();
}

std::size_t JournalList::each(const std::function<void(const JournalRow&)>& take) const {
  std::size_t count = 0;
  std::vector<JournalRow> rows;
  const auto handOver = [&] {
    sortByDate(rows);
    for (const JournalRow& row : rows) take(row);
    count += rows.size();
    rows.clear();
  };
  if (last_ > 0) {
    rows = newest();
  } else {
    visit(condition_, ScanOrder::any, [&](JournalRow row) {
      rows.push_back(std::move(row));
      return rows.size() <= partRows;
    });
  }
  if (last_ > 0 || rows.size() <= partRows) {
    handOver();
  } else {
    rows.clear();
    const JournalHours hours(*journal_, condition_);
    for (const HourSpan& part : JournalHours::parts({&hours}, partRows)) {
      hours.visit(part, condition_, columns, [&](const Value* values) {
        JournalRow row = read(values);
        if (passes(row)) rows.push_back(std::move(row));
      });
      handOver();
    }
  }
  if (count == 0 && !filter_.after) requireKnown();
  return count;
}

}  // namespace voxa
