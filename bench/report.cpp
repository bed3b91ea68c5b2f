// The figures of a month of 1,000,000 transactions. The rival asks for the same ones with a statement for
// each: by day, by hour, by door, unknown cards.

#include <array>
#include <cstdint>
#include <map>
#include <string>

#include "app/qdb.h"
#include "journal/journal.h"
#include "report/figures.h"
#include "report/html.h"
#include "report/page.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/peak_memory.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr int many = 1'000'000;
constexpr int few = 100'000;
constexpr int counted = 20'000;  // rows, when the instructions are counted
constexpr int minutes = 30 * 24 * 60;
constexpr double firstDay = 46327;  // 1 November 2026

/// A month at 64 doors: 9,999 people, and 500 cards that nobody knows.
void fill(Installation& installation, int rows) {
  Journal& journal = installation.library().QDB().Journal();
  require(journal.createDB() == 0, "Cannot create the journal");
  constexpr std::array types = {"00", "00", "00", "00", "00", "00", "00", "20", "24", "10"};
  Transaction transaction(installation.engine(), *journal.DB());
  const auto insert = journal.DB()->prepare(
      "insert into Journal ([Date], StationId, StationName, ReaderId, ReaderName, TransactionType, "
      "CardholderName, TransactionData) values ([a], 1, 'Main building', [b], [c], [d], [e], [f])");
  for (std::int64_t row = 0; row < rows; ++row) {
    const auto door = static_cast<std::int32_t>(row * 37 % 64);
    const std::string number = std::to_string(10'000 + row * 7919 % 9'999).substr(1);
    const std::string type = types.at(static_cast<std::size_t>(row * 3 % 10));
    const bool known = type != "10";
    (void)insert->execute({DateTime{firstDay + static_cast<double>(row * minutes / rows) / 1440}, door,
                           "Door " + std::to_string(door), type, known ? Value("Person " + number) : Value(),
                           known ? "00" + number + "00" : "00000" + std::to_string(100 + row % 500)});
  }
  transaction.commit();
}

Figures ask(Installation& installation) {
  return gatherFigures(installation.library(), {.since = "1/11/2026", .until = "30/11/2026"});
}

/// The rival's counts by a key and the type of transactions.
struct Counts {
  std::map<std::pair<std::string, std::string>, std::int64_t> by;
  std::int64_t all = 0;
};

Counts askPlainly(const PlainSqlite::Statement& statement, PlainSqlite& sqlite) {
  Counts counts;
  while (sqlite.nextRow(statement)) {
    const std::int64_t count = sqlite3_column_int64(statement.get(), 2);
    counts.by[{text(statement, 0), text(statement, 1)}] = count;
    counts.all += count;
  }
  return counts;
}

double memoryOf(int rows) {
  return peakMemory([rows] {
    Installation installation;
    installation.createDatabase();
    fill(installation, rows);
    require(!htmlOf(pageOf(ask(installation))).empty(), "No page");
  });
}

Rows measure(const Harness& harness) {
  const double large = harness.counts() ? 0 : memoryOf(many);
  const double small = harness.counts() ? 0 : memoryOf(few);
  const int rows = harness.counts() ? counted : many;
  Installation installation;
  installation.createDatabase();
  fill(installation, rows);
  PlainSqlite sqlite(installation.folder() + "/" + Journal::dbName);
  const std::string within = " FROM Journal WHERE Date >= 46327 AND Date < 46357 ";
  const std::string types = "TransactionType, count(*)" + within;
  const auto days =
      sqlite.prepare("SELECT CAST(Date AS INTEGER) AS k, " + types + "GROUP BY k, TransactionType");
  const auto hours = sqlite.prepare("SELECT CAST(round(Date * 1440) AS INTEGER) / 60 % 24 AS k, " + types +
                                    "GROUP BY k, TransactionType");
  const auto doors = sqlite.prepare("SELECT ReaderName AS k, " + types + "GROUP BY k, TransactionType");
  const auto unknown =
      sqlite.prepare("SELECT TransactionData AS k, ReaderName, count(*), max(Date)" + within +
                     "AND TransactionType IN ('10', '11', '12', '13') GROUP BY k ORDER BY 4 DESC");
  std::array<Counts, 4> plain;
  const Side rival{[&] {
    plain = {askPlainly(days, sqlite), askPlainly(hours, sqlite), askPlainly(doors, sqlite),
             askPlainly(unknown, sqlite)};
  }};
  Figures figures;
  const Times times = harness.compare({[&] { figures = ask(installation); }}, rival, Pace::once, 5);
  require(figures.all.presentations() == static_cast<std::uint64_t>(rows) && plain[0].all == rows &&
              plain[1].all == rows && plain[2].all == rows &&
              figures.unknownCards.size() == plain[3].by.size(),
          "The figures differ");
  return {{"figures of 1,000,000 presentations", "ms", times.ours * 1e3, times.rival * 1e3, 1.5},
          {"memory of a report of 1,000,000 more than 100,000", "MiB", large - small, {}, 10}};
}

const Registration registration("report", measure);

}  // namespace

}  // namespace voxa::bench
