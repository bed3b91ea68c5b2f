// Finds one row by SQL text, each time with another number in it. The rival binds a prepared statement, steps
// it to the end and resets it.

#include <benchmark/benchmark.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "engines/language/dialect.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr int cards = 1000;

/// The definitions of one open database.
class OpenSchema : public dialect::Schema {
 public:
  explicit OpenSchema(const Database& database) : database_(database) {}
  [[nodiscard]] const TableDef* table(std::string_view name) const override {
    return &database_.tableDef(name);
  }

 private:
  const Database& database_;
};

/// The numbers 1 to `cards`, one after the other, then from 1 again.
class Numbers {
 public:
  int next() { return last_ = last_ % cards + 1; }

 private:
  int last_ = 0;
};

std::vector<std::string> makeTexts() {
  std::vector<std::string> texts;
  for (int n = 0; n <= cards; ++n) {
    texts.push_back("select Name from Cardholders where CardNum = " + std::to_string(n));
  }
  return texts;
}

Row limited(const char* name, const Times& times, double limit) {
  return {name, "us", times.ours * 1e6, times.rival * 1e6, limit};
}

Rows measure(const Harness& harness) {
  Installation installation;
  installation.createDatabase();
  installation.addCardholders(cards);
  Database& database = installation.db();
  PlainSqlite sqlite(installation.copyDatabase());
  const std::vector<std::string> texts = makeTexts();

  Numbers ourNumbers;
  const auto find = [&](int number) {
    return database.openRecordset(texts[static_cast<std::size_t>(number)])->get(0).toText();
  };
  const Side ours{[&] { benchmark::DoNotOptimize(find(ourNumbers.next())); }};

  Numbers rivalNumbers;
  const auto statement = sqlite.prepare("SELECT Name FROM Cardholders WHERE CardNum = ?1");
  const auto findPlainly = [&](int number) {
    // The rival steps to the end of the result, as the engine does: only there it is known whether there is
    // another row.
    sqlite3_bind_int(statement.get(), 1, number);
    if (sqlite3_step(statement.get()) != SQLITE_ROW) throw std::runtime_error("The rival finds no row");
    std::string name = text(statement, 0);
    if (sqlite3_step(statement.get()) != SQLITE_DONE) throw std::runtime_error("The rival finds two rows");
    sqlite3_reset(statement.get());
    return name;
  };
  const Side rival{[&] { benchmark::DoNotOptimize(findPlainly(rivalNumbers.next())); }};
  require(find(812) == "Card 812" && findPlainly(812) == "Card 812", "The lookups find another row");

  const Times alone = harness.compare(ours, rival);
  installation.engine().begin();
  database.lockForChanges();
  sqlite.run("BEGIN");
  const Times together = harness.compare(ours, rival);

  Numbers scanNumbers;
  dialect::Scanned scanned;
  const double scan = harness.time({[&] {
    dialect::scan(texts[static_cast<std::size_t>(scanNumbers.next())], scanned);
    benchmark::DoNotOptimize(scanned);
  }});
  const OpenSchema schema(database);
  // Within the transaction, too. Outside of it the schema's version is read under a lock of the file's, which
  // a rival takes only when he runs the statement.
  const Times first =
      harness.compare({[&] { benchmark::DoNotOptimize(dialect::translate(texts[1], schema)); }},
                      {[&] { benchmark::DoNotOptimize(sqlite.prepare(texts[1])); }});

  installation.engine().rollback();
  sqlite.run("ROLLBACK");

  return {limited("lookup by SQL text", alone, 1.5),
          limited("lookup by SQL text, in a transaction", together, 1.4),
          {"share of the translation in a lookup", "%", 100 * scan / alone.ours},
          {"share of the translation, in a transaction", "%", 100 * scan / together.ours},
          limited("translation of a new text; rival: preparing it", first, 2)};
}

const Registration registration("lookup", measure);

}  // namespace

}  // namespace voxa::bench
