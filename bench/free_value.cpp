// Looks for a free number in a full table. The rival walks through its numbers with a prepared statement.

#include "app/qdb.h"
#include "comm/station.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"
#include "tables/gen_table.h"

namespace voxa::bench {

namespace {

constexpr int stations = 998;

Rows measure(const Harness& harness) {
  Installation installation;
  installation.createDatabase();
  {
    Transaction transaction(installation.engine());
    for (int id = 2; id <= stations; ++id) {  // number 1 is the local station
      const std::string number = std::to_string(id);
      installation.db().execute("insert into Stations (Id, Name) values (" + number + ", 'Station " + number +
                                "')");
    }
    transaction.commit();
  }
  PlainSqlite sqlite(installation.copyDatabase());

  GenTable table(installation.library(), installation.library().QDB().Stations());
  const Side ours{[&] { require(table.getFreeValue("Id", "") == stations + 1, "Another number is free"); }};

  const auto statement = sqlite.prepare("SELECT Id FROM Stations ORDER BY Id");
  const Side rival{[&] {
    int last = 0;
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
      const int id = sqlite3_column_int(statement.get(), 0);
      if (id > last + 1) break;
      last = id;
    }
    sqlite3_reset(statement.get());
    require(code == SQLITE_DONE && last == stations, "The rival finds another number");
  }};
  const Times times = harness.compare(ours, rival);
  installation.requireSilence();
  return {{"getFreeValue over 998 rows", "us", times.ours * 1e6, times.rival * 1e6, 2}};
}

const Registration registration("free-value", measure);

}  // namespace

}  // namespace voxa::bench
