// Brings a Jet file of 100,000 rows over into a new database file, compared at the end. The rival reads the
// same table with mdb-export, and puts it through a pipe into SQLite's own import.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/convert_database.h"
#include "jet/jet_writer.h"
#include "platform/observer.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/peak_memory.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr int rowCount = 100000;

class Silent : public Observer {
 public:
  void progress(const char* /*what*/, std::size_t /*number*/, std::size_t /*total*/) override {}
};

void writeOld(const std::string& path, int rows) {
  using W = jet::JetWriter;
  W writer({});
  writer.table("Visits",
               {{"Id", 4},
                {"At", 8},
                {"Station", 3},
                {"StationName", 10, 50},
                {"Reader", 4},
                {"ReaderName", 10, 50},
                {"Kind", 2},
                {"Granted", 1},
                {"Person", 10, 255},
                {"Amount", 5}},
               {{"PrimaryKey", {0}, true, true, true}});
  for (std::int32_t n = 0; n < rows; ++n) {
    const std::int32_t door = n % 64;
    writer.row({W::raw(n), W::raw(36000 + n / 86400.0), W::raw(static_cast<std::int16_t>(n % 3)),
                writer.text("Main building"), W::raw(door), writer.text("Door " + std::to_string(door)),
                W::raw(std::uint8_t{7}), W::Cell(""), writer.text("Person " + std::to_string(n % 9999)),
                W::raw(std::int64_t{n} * 100)});
  }
  writer.write(path);
}

void bring(const std::string& from, const std::string& to) {
  std::filesystem::remove(to);
  const SystemClock clock;
  Silent silent;
  RefusedRows refused(to + ".refused", false);
  (void)convertDatabase(clock, from, to, refused, silent);
}

double memoryOf(int rows) {
  return peakMemory([rows] {
    const Installation installation;
    const std::string from = installation.folder() + "/old.mdb";
    writeOld(from, rows);
    // What the writer held of the file is no part of it.
    std::ofstream("/proc/self/clear_refs") << 5;
    bring(from, installation.folder() + "/new.mdb");
  });
}

Rows measure(const Harness& harness) {
  const double large = harness.counts() ? 0 : memoryOf(4 * rowCount);
  const double small = harness.counts() ? 0 : memoryOf(rowCount);
  const Installation installation;
  const std::string old = installation.folder() + "/old.mdb";
  const std::string made = installation.folder() + "/new.mdb";
  const std::string rivals = installation.folder() + "/rival.db";
  writeOld(old, rowCount);
  const Side ours{[&] { bring(old, made); }};
  const Side rival{[&] {
    std::filesystem::remove(rivals);
    const std::string line =
        "mdb-export '" + old +
        "' Visits | sqlite3 -cmd 'create table Visits (Id integer primary "
        "key, At text, Station integer, StationName text, Reader integer, ReaderName text, Kind integer, "
        "Granted "
        "integer, Person text, Amount real)' -cmd '.mode csv' -cmd '.import --skip 1 /dev/stdin Visits' '" +
        rivals + "' ''";
    require(std::system(line.c_str()) == 0, "The rival's programs failed");
  }};
  const Times times = harness.compare(ours, rival, Pace::once, 7);
  PlainSqlite check(rivals);
  const auto count = check.prepare("SELECT count(*) FROM Visits WHERE Person LIKE 'Person %'");
  require(check.nextRow(count) && sqlite3_column_int(count.get(), 0) == rowCount, "The rival lacks rows");
  return {{"a Jet file of 100,000 rows; rival: mdb-export | sqlite3 .import", "us a row",
           times.ours * 1e6 / rowCount, times.rival * 1e6 / rowCount, 1.2},
          {"memory of 400,000 rows of a Jet file more than 100,000", "MiB", large - small, {}, 10}};
}

const Registration registration("jet-transfer", measure);

}  // namespace

}  // namespace voxa::bench
