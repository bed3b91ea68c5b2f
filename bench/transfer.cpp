// Copies a whole database into an empty one, and compares both. The rival makes the same definitions and
// copies the rows with INSERT ... SELECT over attached files.

#include "work/transfer.h"

#include <filesystem>
#include <string>

#include "platform/observer.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/peak_memory.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr int rowCount = 100000;
constexpr const char* table = "Visits";

class Silent : public Observer {
 public:
  void progress(const char* /*what*/, std::size_t /*number*/, std::size_t /*total*/) override {}
};

/// Ten columns, a primary key and another index, as an old journal has.
void fill(Database& database, int rows) {
  database.createTable({table,
                        {{.name = "Id", .type = DataType::Long, .autoIncrement = true},
                         {"At", DataType::Date},
                         {"Station", DataType::Integer},
                         {"StationName", DataType::Text, 50},
                         {"Reader", DataType::Long},
                         {"ReaderName", DataType::Text, 50},
                         {"Kind", DataType::Byte},
                         {"Granted", DataType::Boolean},
                         {"Person", DataType::Text, 255},
                         {"Remark", DataType::Memo}},
                        {{"PrimaryKey", {"Id"}, true, true, true}, {"ByMoment", {"At"}}}});
  const auto insert = database.prepare(
      "insert into Visits ([At], Station, StationName, Reader, ReaderName, Kind, Granted, Person, Remark) "
      "values ([a], [b], 'Main building', [c], [d], 7, True, [e], Null)");
  for (int n = 0; n < rows; ++n) {
    const int door = n % 64;
    (void)insert->execute({DateTime{46000 + n / 86400.0}, n % 3, door, "Door " + std::to_string(door),
                           "Person " + std::to_string(n % 9999)});
  }
}

void copy(DatabaseEngine& engine, Database& from, const std::string& to) {
  std::filesystem::remove(to);
  const auto target = engine.create(to);
  Silent silent;
  (void)transfer(from, engine, *target, failAtRow, silent);
  target->close();
}

/// Peak memory of a copy of so many rows, in a process of its own.
double memoryOf(int rows) {
  return peakMemory([rows] {
    Installation installation;
    const auto from = installation.engine().create(installation.folder() + "/from.mdb");
    Transaction transaction(installation.engine(), *from);
    fill(*from, rows);
    transaction.commit();
    copy(installation.engine(), *from, installation.folder() + "/to.mdb");
  });
}

Rows measure(const Harness& harness) {
  const double large = harness.counts() ? 0 : memoryOf(10 * rowCount);
  const double small = harness.counts() ? 0 : memoryOf(rowCount);
  Installation installation;
  const std::string fromPath = installation.folder() + "/from.mdb";
  const std::string toPath = installation.folder() + "/to.mdb";
  const std::string rivalPath = installation.folder() + "/rival.mdb";
  const auto from = installation.engine().create(fromPath);
  {
    Transaction transaction(installation.engine(), *from);
    fill(*from, rowCount);
    transaction.commit();
  }
  const Side ours{[&] { copy(installation.engine(), *from, toPath); }};

  std::string definitions;
  {
    PlainSqlite file(fromPath);
    const auto found = file.prepare(
        "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' "
        "ORDER BY rowid");
    while (file.nextRow(found)) definitions += text(found, 0) + ";";
  }
  const Side rival{[&] {
    std::filesystem::remove(rivalPath);
    PlainSqlite to(rivalPath);
    to.run("ATTACH '" + fromPath + "' AS old");
    to.run("BEGIN;" + definitions + "INSERT INTO Visits SELECT * FROM old.Visits; COMMIT");
  }};
  const Times times = harness.compare(ours, rival, Pace::once, 7);
  PlainSqlite check(rivalPath);
  const auto count = check.prepare("SELECT count(*) FROM Visits");
  require(check.nextRow(count) && sqlite3_column_int(count.get(), 0) == rowCount, "The rival lacks rows");
  return {{"copy of a database of 100,000 rows", "us a row", times.ours * 1e6 / rowCount,
           times.rival * 1e6 / rowCount, 3},
          {"memory of a copy of 1,000,000 rows more than 100,000", "MiB", large - small, {}, 10}};
}

const Registration registration("transfer", measure);

}  // namespace

}  // namespace voxa::bench
