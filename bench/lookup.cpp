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

/// Texts that differ in more than a literal.
std::vector<std::string> makeNewTexts() {
  std::vector<std::string> texts;
  for (int n = 0; n <= cards; ++n) {
    const std::string number = std::to_string(n);
    texts.push_back("select Name as N" + number + " from Cardholders where CardNum = " + number);
  }
  return texts;
}

/// The rival's one row. He steps to the end of the result, as the engine does: only there it is known whether
/// there is another row.
std::string only(const PlainSqlite::Statement& statement) {
  if (sqlite3_step(statement.get()) != SQLITE_ROW) throw std::runtime_error("The rival finds no row");
  std::string name = text(statement, 0);
  if (sqlite3_step(statement.get()) != SQLITE_DONE) throw std::runtime_error("The rival finds two rows");
  sqlite3_reset(statement.get());
  return name;
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
    sqlite3_bind_int(statement.get(), 1, number);
    return only(statement);
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

  // More texts than the engine keeps statements of, so that each is new when its turn comes again.
  const std::vector<std::string> newTexts = makeNewTexts();
  Numbers ourNew;
  Numbers rivalNew;
  const auto findNewly = [&](const std::string& newText) {
    return database.openRecordset(newText)->get(0).toText();
  };
  const auto findNewlyPlainly = [&](const std::string& newText) {
    const auto prepared = sqlite.prepare(newText);
    return only(prepared);
  };
  require(findNewly(newTexts[812]) == "Card 812" && findNewlyPlainly(newTexts[812]) == "Card 812",
          "The lookups by new texts find another row");
  const Times whole = harness.compare(
      {[&] { benchmark::DoNotOptimize(findNewly(newTexts[static_cast<std::size_t>(ourNew.next())])); }},
      {[&] {
        benchmark::DoNotOptimize(findNewlyPlainly(newTexts[static_cast<std::size_t>(rivalNew.next())]));
      }});

  installation.engine().rollback();
  sqlite.run("ROLLBACK");

  return {limited("lookup by SQL text", alone, 1.5),
          limited("lookup by SQL text, in a transaction", together, 1.4),
          {"share of the translation in a lookup", "%", 100 * scan / alone.ours},
          {"share of the translation, in a transaction", "%", 100 * scan / together.ours},
          limited("translation of a new text; rival: preparing it", first, 2),
          limited("lookup by a new text, in a transaction", whole, 2)};
}

const Registration registration("lookup", measure);

}  // namespace

}  // namespace voxa::bench
