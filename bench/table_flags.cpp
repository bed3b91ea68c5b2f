// Marks every cardholder to be sent again. The rival runs one UPDATE. Also shows whether the time grows with
// the rows.

#include "access/cardholder.h"
#include "app/qdb.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr int few = 1000;
constexpr int many = 10000;

/// The UPDATE that gives every flag of every cardholder the same value.
std::string setAll(const std::string& value) {
  std::string sql = "update Cardholders set ";
  bool first = true;
  for (const char* flag : {"CardCodeFlagD", "AccessGroupIdFlagD", "ValidatedFlagD", "PINCodeFlagD",
                           "SupervisorFlagD", "ValidationDateFlagD", "CreditFlagD"}) {
    sql += (first ? "" : ", ") + std::string(flag) + " = " + value;
    first = false;
  }
  return sql;
}

void setFlags(const Installation& installation) {
  require(installation.library().QDB().Cardholders().setTableFlagsD(true) == 0, "setTableFlagsD failed");
}

/// Sets the flags within a transaction, which is undone before the next run. So no disk is waited for, which
/// would hide what grows with the rows.
Side withinTransaction(Installation& installation) {
  Side side;
  side.prepare = [&installation] {
    if (installation.engine().inTransaction()) installation.engine().rollback();
    installation.engine().begin();
  };
  side.work = [&installation] { setFlags(installation); };
  return side;
}

Rows measure(const Harness& harness) {
  Installation large;
  large.createDatabase();
  large.addCardholders(many);
  PlainSqlite sqlite(large.copyDatabase());

  Side ours;
  ours.prepare = [&] { large.db().execute(setAll("False")); };
  ours.work = [&] { setFlags(large); };
  Side rival;
  const auto set = sqlite.prepare(setAll("-1"));
  rival.prepare = [&] { sqlite.run(setAll("0")); };
  rival.work = [&] { sqlite.run(set); };
  const Times times = harness.compare(ours, rival, Pace::once);
  const auto left = large.db().openRecordset("select count(*) from Cardholders where CreditFlagD = False");
  require(left->get(0).toInt32() == 0 || times.ours == 0, "setTableFlagsD leaves flags that are not set");
  large.db().execute(setAll("False"));

  Installation small;
  small.createDatabase();
  small.addCardholders(few);
  const Times growth = harness.compare(withinTransaction(large), withinTransaction(small), Pace::once);
  return {{"setTableFlagsD(true) over 10,000 rows", "ms", times.ours * 1e3, times.rival * 1e3, 1.5},
          {"setTableFlagsD(true), 10,000 rows; rival: 1,000 rows", "us a row", growth.ours * 1e6 / many,
           growth.rival * 1e6 / few, 1.5}};
}

const Registration registration("table-flags", measure);

}  // namespace

}  // namespace voxa::bench
