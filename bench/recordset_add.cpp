// Adds rows to a table, one after the other, in one transaction. The rival runs a prepared INSERT.

#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr int rowCount = 10000;

Rows measure(const Harness& harness) {
  Installation installation;
  installation.createDatabase();
  PlainSqlite sqlite(installation.copyDatabase());
  Database& database = installation.db();

  Side ours;
  ours.prepare = [&] { database.execute("delete from Cardholders"); };
  ours.work = [&] {
    Transaction transaction(installation.engine(), database);
    const auto rows = database.openRecordset("select CardNum, Name, CardCode from Cardholders");
    for (std::int32_t n = 1; n <= rowCount; ++n) {
      const std::string number = std::to_string(n);
      rows->addNew();
      rows->set(0, n);
      rows->set(1, "Card " + number);
      rows->set(2, number);
      rows->update();
    }
    transaction.commit();
  };

  const auto insert = sqlite.prepare("INSERT INTO Cardholders (CardNum, Name, CardCode) VALUES (?1, ?2, ?3)");
  const auto bind = [&](int place, const std::string& value) {
    sqlite3_bind_text(insert.get(), place, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT);
  };
  Side rival;
  rival.prepare = [&] { sqlite.run("DELETE FROM Cardholders"); };
  rival.work = [&] {
    sqlite.run("BEGIN IMMEDIATE");
    for (int n = 1; n <= rowCount; ++n) {
      const std::string number = std::to_string(n);
      sqlite3_bind_int(insert.get(), 1, n);
      bind(2, "Card " + number);
      bind(3, number);
      sqlite.run(insert);
    }
    sqlite.run("COMMIT");
  };
  const Times times = harness.compare(ours, rival, Pace::once);
  const std::string all = "select count(*) from Cardholders where Name = 'Card ' & CardNum";
  require(database.openRecordset(all)->get(0).toInt32() == rowCount || times.ours == 0, "Rows are missing");
  installation.requireSilence();
  return {
      {"addNew of 10,000 rows", "us a row", times.ours * 1e6 / rowCount, times.rival * 1e6 / rowCount, 1.5}};
}

const Registration registration("recordset-add", measure);

}  // namespace

}  // namespace voxa::bench
