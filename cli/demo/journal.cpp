#include "journal.h"

#include <deque>
#include <iostream>
#include <optional>
#include <tuple>

#include "output/table_output.h"
#include "platform/datetime.h"
#include "work/journal_list.h"

namespace voxa::cli {

namespace {

constexpr TransactionMeaning shownMeanings[] = {
    TransactionMeaning::granted, TransactionMeaning::refusedByTime, TransactionMeaning::refusedByRights,
    TransactionMeaning::unknownCard};

JournalEntry entryOf(const JournalRow& row) {
  return {formatDateTime(row.date, "dd/mm/yyyy hh:nn"),
          row.stationId,
          row.station,
          row.readerId,
          row.reader,
          row.type,
          row.cardholder,
          row.data};
}

std::string described(const JournalEntry& entry) {
  return entry.stationName + " " + std::to_string(entry.station) + ", " + entry.readerName + " " +
         std::to_string(entry.reader) + ": " + entry.type + " " + textOf(voxa::meaningOf(entry.type)) + " '" +
         entry.cardholder + "' " + entry.data;
}

/// What happened at each door, by its name.
class Doors {
 public:
  void add(const JournalEntry& entry, bool found) {
    Count& count = counts_[entry.readerName][voxa::meaningOf(entry.type)];
    ++(found ? count.found : count.expected);
    Count& sum = total_[voxa::meaningOf(entry.type)];
    ++(found ? sum.found : sum.expected);
  }
  void print() const {
    std::vector<std::string> titles = {"Door"};
    for (const TransactionMeaning meaning : shownMeanings) {
      titles.emplace_back(textOf(meaning));
      titles.emplace_back("found");
    }
    TableOutput table(titles);
    for (const auto& [door, counts] : counts_) table.add(cells(door, counts));
    table.add(cells("All doors", total_));
    table.print(std::cout, false);
  }

 private:
  struct Count {
    int expected = 0;
    int found = 0;
  };
  using Counts = std::map<TransactionMeaning, Count>;

  static std::vector<Cell> cells(const std::string& door, const Counts& counts) {
    std::vector<Cell> line = {door};
    for (const TransactionMeaning meaning : shownMeanings) {
      const auto found = counts.find(meaning);
      const Count count = found == counts.end() ? Count() : found->second;
      line.emplace_back(count.expected);
      line.emplace_back(count.found);
    }
    return line;
  }

  std::map<std::string, Counts> counts_;
  Counts total_;
};

/// The rows of the journal, to be taken out one by one.
class Found {
 public:
  Found(Installation& installation, Doors& doors) {
    JournalList(installation, {}).each([&](const JournalRow& row) {
      JournalEntry entry = entryOf(row);
      doors.add(entry, true);
      rows_[keyOf(entry)].push_back(std::move(entry));
    });
  }
  /// The first row of that door, minute and card that has not been taken.
  std::optional<JournalEntry> take(const JournalEntry& like) {
    const auto rows = rows_.find(keyOf(like));
    if (rows == rows_.end() || rows->second.empty()) return {};
    JournalEntry entry = std::move(rows->second.front());
    rows->second.pop_front();
    return entry;
  }
  [[nodiscard]] const auto& left() const { return rows_; }

 private:
  using Key = std::tuple<std::int32_t, std::string, std::string>;
  static Key keyOf(const JournalEntry& entry) { return {entry.reader, entry.moment, entry.data}; }
  std::map<Key, std::deque<JournalEntry>> rows_;
};

class Differences {
 public:
  void add(const std::string& text) {
    constexpr int shown = 10;
    if (++count_ <= shown) std::cout << "   DIFFERS: " << text << '\n';
  }
  [[nodiscard]] int count() const { return count_; }

 private:
  int count_ = 0;
};

void printReasons(const std::vector<Expected>& expected) {
  std::map<Reason, int> counts;
  for (const Expected& one : expected) ++counts[one.reason];
  TableOutput table({"Presentations", "Reason", "Outcome"});
  for (const auto& [reason, count] : counts) table.add({count, textOf(reason), textOf(meaningOf(reason))});
  table.print(std::cout, false);
}

}  // namespace

int compareWithJournal(Installation& installation, const std::vector<Expected>& expected) {
  Doors doors;
  Differences differences;
  Found found(installation, doors);
  for (const Expected& one : expected) {
    doors.add(one.entry, false);
    const auto row = found.take(one.entry);
    if (!row) {
      differences.add(one.entry.moment + " " + described(one.entry) + " is missing in the journal");
    } else if (*row != one.entry) {
      differences.add(one.entry.moment + " " + described(one.entry) + ", the journal says " +
                      described(*row));
    }
  }
  for (const auto& [key, rows] : found.left()) {
    for (const JournalEntry& row : rows) {
      differences.add(row.moment + " " + described(row) + " is in the journal, and did not happen");
    }
  }
  printReasons(expected);
  std::cout << '\n';
  doors.print();
  return differences.count();
}

}  // namespace voxa::cli
