// Runs statements over random tables and compares the answers with those of plain code. For another seed or a
// longer run:
// VOXA_SEED=7 VOXA_ROUNDS=100000 test_language --gtest_filter='Differential.*'

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

#include "engines/language/random_conditions.h"
#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/temporary_folder.h"

namespace voxa::differential {
namespace {

class Differential : public testing::Test {
 protected:
  static std::uint64_t setting(const char* name, std::uint64_t usual) {
    const char* given = std::getenv(name);
    return given == nullptr ? usual : std::strtoull(given, nullptr, 10);
  }

  void createTable(const std::string& name) {
    TableDef table{name, {}, {}};
    for (const auto& [field, type] : columns)
      table.fields.push_back({.name = field, .type = type, .allowZeroLength = true});
    db_->createTable(table);
  }
  std::vector<Row> fill(const std::string& name) {
    std::vector<Row> rows(1 + random_.below(12));
    db_->execute("delete from " + name);
    for (Row& row : rows) {
      std::string values;
      for (const Column& c : columns) {
        const bool first = row.empty();
        row.push_back(first ? Cell{false, static_cast<double>(&row - rows.data())}
                            : random_.randomCell(c.type));
        values += (first ? "" : ", ") + Random::literal(row.back(), c.type);
      }
      db_->execute("insert into " + name + " values (" + values + ")");
    }
    return rows;
  }

  /// Each cell ends with a bar, each row with a semicolon.
  std::vector<std::string> rowsOf(const std::string& sql) { return rowsOf(db_->openRecordset(sql)); }
  static std::vector<std::string> rowsOf(const std::unique_ptr<Recordset>& rows) {
    std::vector<std::string> all;
    for (; !rows->eof(); rows->moveNext(), all.back() += ';') {
      all.emplace_back();
      for (std::size_t i = 0; i < rows->fieldCount(); ++i) {
        const Value v = rows->get(i);
        all.back() += (v.isNull() ? "-" : v.isText() ? v.toText() : Value(v.toDouble()).toText()) + "|";
      }
    }
    return all;
  }
  std::string answer(const std::string& sql) {
    std::string all;
    for (const std::string& row : rowsOf(sql)) all += row;
    return all;
  }
  static std::string shown(const Cell& cell, DataType type) {
    return (cell.null ? "-" : type == DataType::Text ? cell.text : Value(cell.number).toText()) + "|";
  }
  static std::string id(const Row& row) { return shown(row[0], DataType::Long); }

  void selects() {
    const Condition where = random_.condition();
    std::vector<const Row*> found;
    for (const Row& row : a_) {
      if (where.holds({&row}).value_or(false)) found.push_back(&row);
    }
    std::string orderBy = random_.oneIn(2) ? ", Id" : "";
    const bool unique = !orderBy.empty();
    std::vector<std::pair<std::size_t, bool>> keys;  // column, descending
    for (std::size_t n = random_.below(3) + (unique ? 0 : 1); n > 0; --n) {
      const auto& [column, down] = keys.emplace_back(random_.below(columnCount), random_.oneIn(2));
      orderBy = ", " + std::string(columns[column].name) + (down ? " desc" : "") + orderBy;
    }
    std::reverse(keys.begin(), keys.end());
    const auto before = [&](const Row* x, const Row* y) {
      for (const auto& [column, down] : keys) {
        const int sign = order((*x)[column], (*y)[column], columns[column].type == DataType::Text);
        if (sign != 0) return down ? sign > 0 : sign < 0;
      }
      return false;
    };
    finds(where.sql, found);
    std::stable_sort(found.begin(), found.end(), before);
    narrows(where.sql, orderBy.substr(2), found.size());
    std::size_t top = 1 + random_.below(20);
    const std::string sql = "select top " + std::to_string(top) + " Id from A where " + where.sql +
                            " order by " + orderBy.substr(2);
    // Rows that are equal to the last one come with it.
    while (!unique && top < found.size() && !before(found[top - 1], found[top])) ++top;
    if (top < found.size()) found.resize(top);
    std::vector<std::string> expected;
    for (const Row* row : found) expected.push_back(id(*row) + ";");
    std::vector<std::string> given = rowsOf(sql);
    if (!unique) {  // those that are equal may come in any order
      std::sort(expected.begin(), expected.end());
      std::sort(given.begin(), given.end());
    }
    EXPECT_EQ(given, expected) << sql;
  }

  /// Rows are found by the table, and by the values that they show.
  void finds(const std::string& condition, const std::vector<const Row*>& expected) {
    for (const RecordsetKind kind : {RecordsetKind::dynaset, RecordsetKind::snapshot}) {
      const auto rows = db_->openRecordset("select * from A order by Id", {}, {kind});
      bool more = rows->findFirst(condition);
      for (const Row* row : expected) {
        ASSERT_TRUE(more) << condition;
        ASSERT_EQ(shown({false, rows->get(0).toDouble()}, DataType::Long), id(*row)) << condition;
        more = rows->findNext(condition);
      }
      EXPECT_FALSE(more) << condition;
    }
  }
  void narrows(const std::string& condition, const std::string& order, std::size_t count) {
    const std::vector<std::string> live = rowsOf(db_->openRecordset("A")->openFrom(condition, order));
    const auto snapshot = db_->openRecordset("A", {}, {RecordsetKind::snapshot});
    EXPECT_EQ(live.size(), count) << condition;
    EXPECT_EQ(rowsOf(snapshot->openFrom(condition, order)), live) << condition << " by " << order;
  }

  void joins() {
    random_.tables = 2;
    const Condition on = random_.simple();
    const Condition where = random_.condition(2);
    random_.tables = 1;
    std::string expected;
    for (const Row& a : a_) {
      for (const Row& b : b_) {
        if (both(on.holds({&a, &b}), where.holds({&a, &b})).value_or(false)) expected += id(a) + id(b) + ";";
      }
    }
    const std::string sql =
        "select A.Id, b.Id from A inner join B on " + on.sql + " where " + where.sql + " order by A.Id, B.Id";
    EXPECT_EQ(answer(sql), expected) << sql;
  }

  void changes() {
    const Condition where = random_.condition();
    const bool removes = random_.oneIn(3);
    const std::size_t column = 1 + random_.below(columnCount - 1);
    const auto& [name, type] = columns[column];
    const Cell cell = random_.randomCell(type);
    const std::string sql =
        (removes ? "delete from A"
                 : std::string("update A set ") + name + " = " + Random::literal(cell, type)) +
        " where " + where.sql;
    int touched = 0;
    std::string expected;
    std::vector<Row> left;
    for (Row row : a_) {
      const bool hit = where.holds({&row}).value_or(false);
      touched += hit ? 1 : 0;
      if (hit && removes) continue;
      if (hit) row[column] = cell;
      for (std::size_t i = 0; i < columnCount; ++i) expected += shown(row[i], columns[i].type);
      expected += ";";
      left.push_back(row);
    }
    a_ = left;
    EXPECT_EQ(db_->execute(sql), touched) << sql;
    EXPECT_EQ(answer("select * from A order by Id"), expected) << sql;
  }

  const std::uint64_t seed_ = setting("VOXA_SEED", 20261224);
  Random random_{seed_};
  TemporaryFolder folder_;
  SystemClock clock_;
  std::unique_ptr<DatabaseEngine> engine_ = makeSqliteEngine(clock_);
  std::shared_ptr<Database> db_ = engine_->create(folder_ / "t.mdb");
  std::vector<Row> a_, b_;
};

TEST_F(Differential, AnswersAreThoseOfPlainCode) {
  std::cout << "seed " << seed_ << "\n";
  createTable("A");
  createTable("B");
  for (std::uint64_t round = setting("VOXA_ROUNDS", 100); round > 0 && !HasFailure(); --round) {
    const Transaction transaction(*engine_);  // is rolled back, so nothing is written to the disk
    a_ = fill("A");
    b_ = fill("B");
    for (int i = 0; i < 10; ++i) selects();
    for (int i = 0; i < 3; ++i) joins();
    for (int i = 0; i < 3; ++i) changes();
  }
}

}  // namespace
}  // namespace voxa::differential
