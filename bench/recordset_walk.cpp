// Walks through the rows of a large table and reads three fields of each. The rival steps through the same
// rows with a prepared statement, and reads the same three columns.

#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr int rowCount = 100000;

/// What the fields of all rows add up to. It shows that both sides read the same.
struct Sum {
  std::int64_t numbers = 0;
  std::size_t characters = 0;
  friend bool operator==(const Sum&, const Sum&) = default;

  void add(int number, const std::string& name, const std::string& code) {
    numbers += number;
    characters += name.size() + code.size();
  }
};

Rows measure(const Harness& harness) {
  Installation installation;
  installation.createDatabase();
  installation.addCardholders(rowCount);
  PlainSqlite sqlite(installation.copyDatabase());

  Sum ourSum;
  const Side ours{[&] {
    ourSum = {};
    const auto rows = installation.db().openRecordset("select CardNum, Name, CardCode from Cardholders");
    for (; !rows->eof(); rows->moveNext())
      ourSum.add(rows->get(0).toInt32(), rows->get(1).toText(), rows->get(2).toText());
  }};

  Sum rivalSum;
  const auto statement = sqlite.prepare("SELECT CardNum, Name, CardCode FROM Cardholders");
  const Side rival{[&] {
    rivalSum = {};
    while (sqlite.nextRow(statement))
      rivalSum.add(sqlite3_column_int(statement.get(), 0), text(statement, 1), text(statement, 2));
  }};
  const Times times = harness.compare(ours, rival, Pace::once);
  require(ourSum == rivalSum || times.ours == 0, "The walks read other values");
  installation.requireSilence();
  return {{"walk over 100,000 rows, three fields", "us a row", times.ours * 1e6 / rowCount,
           times.rival * 1e6 / rowCount, 1.5}};
}

const Registration registration("recordset-walk", measure);

}  // namespace

}  // namespace voxa::bench
