// Creates a block of 2,000 cards. The rival inserts the same rows with a prepared statement.

#include <cstdio>
#include <string>

#include "access/cardholder.h"
#include "app/qdb.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr int cards = 2000;
constexpr int firstNumber = 1;
constexpr int firstCode = 10000001;
constexpr int defaultGroup = 0;  // no reader here is in it, so nothing is sent

void insertPlainly(PlainSqlite& sqlite, const PlainSqlite::Statement& insert) {
  sqlite.run("BEGIN IMMEDIATE");
  for (int i = 0; i < cards; ++i) {
    char name[16];
    char code[16];
    const int nameSize = std::snprintf(name, sizeof name, "Card %04d", firstNumber + i);
    const int codeSize = std::snprintf(code, sizeof code, "%08d", firstCode + i);
    sqlite3_bind_text(insert.get(), 1, name, nameSize, SQLITE_STATIC);
    sqlite3_bind_int(insert.get(), 2, firstNumber + i);
    sqlite3_bind_text(insert.get(), 3, code, codeSize, SQLITE_STATIC);
    sqlite3_bind_int(insert.get(), 4, defaultGroup);
    sqlite.run(insert);
  }
  sqlite.run("COMMIT");
}

/// All values of all rows, without the ids, which keep counting up.
std::string allCards(const std::string& database) {
  PlainSqlite sqlite(database);
  const auto rows = sqlite.prepare("SELECT * FROM Cardholders ORDER BY CardNum");
  std::string all;
  while (sqlite.nextRow(rows)) {
    for (int column = 1; column < sqlite3_column_count(rows.get()); ++column) {
      const bool isNull = sqlite3_column_type(rows.get(), column) == SQLITE_NULL;
      all += (isNull ? "-" : text(rows, column)) + ";";
    }
  }
  return all;
}

Rows measure(const Harness& harness) {
  Installation installation;
  installation.createDatabase();
  const std::string copy = installation.copyDatabase();
  PlainSqlite sqlite(copy);

  Side ours;
  ours.prepare = [&] { installation.db().execute("delete * from Cardholders"); };
  ours.work = [&] {
    const auto created = installation.library().QDB().Cardholders().createGroup(
        firstNumber, std::to_string(firstCode), cards, defaultGroup);
    require(created == 0, "createGroup failed");
  };
  Side rival;
  const auto insert = sqlite.prepare(
      "INSERT INTO Cardholders (Name, CardNum, CardCode, AccessGroupId) VALUES (?1, ?2, ?3, ?4)");
  rival.prepare = [&] { sqlite.run("DELETE FROM Cardholders"); };
  rival.work = [&] { insertPlainly(sqlite, insert); };

  ours.work();
  rival.work();
  require(allCards(installation.databasePath()) == allCards(copy), "The cards differ");
  const Times times = harness.compare(ours, rival, Pace::once);
  installation.requireSilence();
  return {{"createGroup of 2,000 cards", "ms", times.ours * 1e3, times.rival * 1e3, 1.5}};
}

const Registration registration("card-group", measure);

}  // namespace

}  // namespace voxa::bench
