#include "work/transfer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>

#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/observer.h"
#include "platform/temporary_folder.h"
#include "work/sql_script.h"

namespace voxa {
namespace {

class Silent : public Observer {
 public:
  void progress(const char* /*what*/, std::size_t /*number*/, std::size_t /*total*/) override {}
};

class Transfers : public testing::Test {
 protected:
  std::shared_ptr<Database> create(const std::string& name) { return engine->create(folder / name); }

  /// Two tables with every type and every kind of definition, rows of which bear what texts and numbers can.
  std::shared_ptr<Database> difficult() {
    auto db = create("from.mdb");
    db->createTable({"Group by",
                     {{.name = "Id", .type = DataType::Long, .autoIncrement = true},
                      {.name = "Order", .type = DataType::Text, .size = 255, .required = true},
                      {.name = "Note's", .type = DataType::Memo, .allowZeroLength = true}},
                     {{"PrimaryKey", {"Id"}, true, true, true}, {"By Order", {"Order", "Id"}}}});
    db->createTable(
        {"All",
         {{.name = "Yes", .type = DataType::Boolean, .defaultValue = true},
          {.name = "Byte", .type = DataType::Byte, .defaultValue = std::uint8_t{7}},
          {.name = "Short",
           .type = DataType::Integer,
           .defaultValue = std::int16_t{-7},
           .validationRule = ">-9"},
          {.name = "Long", .type = DataType::Long},
          {.name = "Money", .type = DataType::Currency, .defaultValue = -0.5},
          {.name = "Single", .type = DataType::Single},
          {.name = "Double", .type = DataType::Double},
          {.name = "At", .type = DataType::Date, .defaultValue = DateTime{36526.5}},
          {.name = "Bytes", .type = DataType::Binary, .size = 20},
          {.name = "Text", .type = DataType::Text, .size = 9, .defaultValue = "a'b", .allowZeroLength = true},
          {.name = "Picture", .type = DataType::LongBinary},
          {.name = "Memo", .type = DataType::Memo, .validationRule = "Not Like 'x''*'"}},
         {{"U", {"Long"}, false, true, false}, {"N", {"Byte", "Short"}, false, false, true}}});
    db->createRelation({"R", "Group by", "All", {{"Id", "Long"}}, true, true});
    db->createQuery(
        {"Some';", "PARAMETERS p Long;\r\nSELECT * FROM [Group by] WHERE Id < p AND [Order] <> ';'"});
    db->setSchemaVersion(3);
    (void)db->execute("insert into [Group by] ([Id], [Order], [Note's]) values (-5, 'b; ''c''\r\nd', '')");
    (void)db->execute("insert into [Group by] ([Id], [Order]) values (2147483646, 'ä€😀 #[\"')");
    const auto insert = db->prepare(
        "insert into [All] ([Yes], [Byte], [Short], [Long], [Money], [Single], [Double], [At], [Bytes], "
        "[Text], "
        "[Picture], [Memo]) values ([0], [1], [2], [3], [4], [5], [6], [7], [8], [9], [10], [11])");
    using std::string;
    (void)insert->execute({false, std::uint8_t{255}, std::int16_t{-8}, -5, -922337203685.4775, 0.1,
                           1.7976931348623157e308, DateTime{-657434.25}, Bytes{string("\0'\xff", 3)}, "",
                           Bytes{string(3000, '\0')}, string(70000, 'y')});
    (void)insert->execute({true, std::uint8_t{0}, std::int16_t{0}, Value(), 0.0001, 3.402823e38, 5e-324,
                           DateTime{1.0 / 3}, Value(), "9 letters", Bytes{}, "#1/2/2003#;"});
    return db;
  }

  static void expectSame(Database& left, Database& right) {
    ASSERT_EQ(left.tableNames(), right.tableNames());
    for (const std::string& table : left.tableNames()) {
      EXPECT_EQ(left.tableDef(table), right.tableDef(table)) << table;
      const std::vector<std::string> fields = left.tableDef(table).fieldNames();
      EXPECT_EQ(digestOf(left, table, fields), digestOf(right, table, fields)) << table;
    }
    EXPECT_EQ(left.relations(), right.relations());
    ASSERT_EQ(left.queries().size(), right.queries().size());
    EXPECT_EQ(left.queries().front().sql, right.queries().front().sql);
    EXPECT_EQ(left.schemaVersion(), right.schemaVersion());
  }

  int failureOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const Error& error) {
      said = error.description();
      return error.number();
    }
    return 0;
  }

  TemporaryFolder folder;
  SystemClock clock;
  std::unique_ptr<DatabaseEngine> engine = makeSqliteEngine(clock);
  Silent silent;
  std::string said;
};

TEST_F(Transfers, ADatabaseComesBackAsItWas) {
  const auto from = difficult();
  // Masked columns are not taken at once, past the mask: row by row it is the same.
  const auto masking = makeSqliteEngine(clock, {.secrets = {{"", "Nobody"}}});
  const auto slow = masking->create(folder / "slow.mdb");
  (void)transfer(*from, *masking, *slow, failAtRow, silent);
  expectSame(*from, *slow);

  const auto copy = create("copy.mdb");
  const Transferred done = transfer(*from, *engine, *copy, failAtRow, silent);
  EXPECT_EQ(done.tables.at(1).written, 2U);
  expectSame(*from, *copy);

  const std::string script = folder / "all.sql";
  (void)writeScript(*copy, script, silent);
  const auto read = create("read.mdb");
  EXPECT_EQ(readScript(script, *engine, *read, failAtRow, silent).tables.at(0).written, 2U);
  expectSame(*from, *read);
  EXPECT_EQ(failureOf([&] { (void)writeScript(*copy, script, silent); }), err::fileExists);
}

TEST_F(Transfers, RowsAreTakenAtOnceOrNot) {
  const auto from = difficult();
  const auto to = create("to.mdb");
  EXPECT_FALSE(to->takeRows(*from, "All")) << "outside of a transaction";
  to->createTable(from->tableDef("All"));
  for (int round = 0; round < 2; ++round) {
    const Transaction transaction(*engine, *to);  // undone
    EXPECT_TRUE(to->takeRows(*from, "All"));
    EXPECT_FALSE(to->takeRows(*from, "All")) << "the same keys again";
    EXPECT_EQ(digestOf(*to, "All", {"Memo"}), digestOf(*from, "All", {"Memo"}));
  }
  EXPECT_EQ(digestOf(*to, "All", {"Memo"}).rows, 0U);
  const Transaction transaction(*engine, *to);
  (void)from->execute("delete from [All]");
  EXPECT_FALSE(to->takeRows(*from, "All")) << "what is not committed is not seen";
}

TEST_F(Transfers, AScriptThatIsCutOffOrWrongLeavesNothing) {
  const std::string script = folder / "all.sql";
  (void)writeScript(*difficult(), script, silent);
  const std::string whole = files::contents(script).value();
  const auto to = create("to.mdb");
  for (const std::size_t end : {whole.size() - 7, whole.size() / 2, std::size_t{40}}) {
    std::ofstream(script) << whole.substr(0, end);
    EXPECT_EQ(failureOf([&] { (void)readScript(script, *engine, *to, failAtRow, silent); }), err::dbSyntax)
        << end;
    EXPECT_TRUE(to->tableNames().empty()) << end;
  }
  std::ofstream(script)
      << "create table A (N long);\n\n-- two\ninsert into A\nvalues (1);\ninsert into B values (2);";
  EXPECT_EQ(failureOf([&] { (void)readScript(script, *engine, *to, failAtRow, silent); }),
            err::dbUnknownTable);
  EXPECT_NE(said.find("line 6"), std::string::npos) << said;
  EXPECT_TRUE(to->tableNames().empty());
}

TEST_F(Transfers, AScriptOfOthersIsReadToItsEnd) {
  const std::string script = folder / "other.sql";
  std::ofstream(script)
      << "\xEF\xBB\xBF"
         "create table A (N long);;\r\n ; -- end\r\n-- end\n"
         "create table B (N long unique);\ninsert into B values (1);\ninsert into B values (1);\n";
  std::string refused;
  const OnRefused note = [&](const RefusedRow& row) { refused += row.key; };
  const auto to = create("to.mdb");
  (void)readScript(script, *engine, *to, note, silent);
  EXPECT_EQ(to->tableNames(), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(refused, "line 6");
  std::ofstream(script) << "-- voxa database, schema 0\ncreate table C (N long);\n-- end\ndrop table A;\n";
  EXPECT_EQ(failureOf([&] { (void)readScript(script, *engine, *to, note, silent); }), err::dbSyntax);
  EXPECT_NE(said.find("Line 4"), std::string::npos) << said;
}

TEST_F(Transfers, RowsWithoutARelatedOneTakeNoOthersAlong) {
  const auto from = create("from.mdb");
  const auto table = [&](const char* name) {
    from->createTable(
        {name, {{"Id", DataType::Long}, {"Up", DataType::Long}}, {{"K", {"Id"}, true, true, true}}});
  };
  for (const char* name : {"A", "B", "C"}) table(name);
  for (const char* row : {"A values (1, 1)", "A values (2, 2)", "B values (1, 1)", "B values (2, 7)",
                          "C values (1, 1)", "C values (2, 1)", "C values (3, 9)", "C values (4, 3)"})
    (void)from->execute(std::string("insert into ") + row);
  // A refers to B, which refers to C; C refers to itself.
  const std::vector<Relation> relations{{"AB", "B", "A", {{"Id", "Up"}}, false, true},
                                        {"BC", "C", "B", {{"Id", "Up"}}, false, true},
                                        {"CC", "C", "C", {{"Id", "Up"}}}};
  Transferred done;
  for (const char* name : {"A", "B", "C"}) done.tables.push_back({name, 2, 2, 0});
  std::string refused;
  const OnRefused note = [&](const RefusedRow& row) { refused += row.table + row.key + ' '; };
  copyRelations(*from, relations, note, done);
  EXPECT_EQ(refused, "BId 2 CId 3 AId 2 CId 4 ");
  EXPECT_EQ(done.relations, 3U);
  EXPECT_EQ(done.tables[0].written, 1U);
}

TEST_F(Transfers, WhatADefinitionCannotKeepIsNoted) {
  const auto to = create("to.mdb");
  const auto from = create("from.mdb");
  from->createTable({"T", {{"Id", DataType::Long}}, {}});
  (void)from->execute("insert into T values (4)");
  TableDef odd = from->tableDef("T");
  odd.fields[0].validationRule = "Foo([Id])";
  odd.indexes = {{"a.b", {"Id"}, true, true, true}};
  const Transaction transaction(*engine, *to);
  Transferred done;
  copyTable(*from, odd, *to, failAtRow, done, silent);
  EXPECT_EQ(done.notes.size(), 2U);
  EXPECT_NE(to->tableDef("T").index("a_b"), nullptr);
  EXPECT_EQ(done.tables.at(0).written, 1U);
}

TEST_F(Transfers, RowsThatBreakARuleAreToldOf) {
  const auto from = create("from.mdb");
  // What another program can have left: rows that came before the rule.
  from->createTable(
      {"P", {{"Id", DataType::Long}, {"T", DataType::Text, 3}}, {{"K", {"Id"}, true, true, true}}});
  from->createTable({"C", {{"P", DataType::Long}, {"Q", DataType::Long}}, {}});
  for (const char* row : {"P values (1, 'a')", "P values (2, 'bbb')", "C values (1, 1)", "C values (7, 1)",
                          "C values (Null, 9)", "C values (2, Null)"})
    (void)from->execute(std::string("insert into ") + row);

  const auto to = create("to.mdb");
  TableDef strict = from->tableDef("P");
  strict.fields[1].validationRule = "<>'a'";
  to->createTable(strict);
  to->createTable(from->tableDef("C"));
  std::ostringstream refused;
  const OnRefused note = [&](const RefusedRow& row) { refused << row.table << ' ' << row.key << "; "; };
  RowCopy copy(*to, to->tableDef("P"), {"Id", "T"}, note);
  from->visitRows("P", [&](const Value* row) {
    copy.write(row);
    return true;
  });
  copy.compare();
  (void)to->execute("insert into P values (7, 'x')");
  EXPECT_EQ(failureOf([&] { copy.compare(); }), err::internalError);
  (void)to->execute("delete from P where Id = 7");
  from->visitRows("C", [&](const Value* row) {
    RowCopy(*to, to->tableDef("C"), {"P", "Q"}, note).write(row);
    return true;
  });
  Transferred done;
  copyRelations(*to, {{"R", "P", "C", {{"Id", "P"}}}, {"None", "C", "P", {{"Q", "Id"}}}}, note, done);
  EXPECT_EQ(done.relations, 1U);
  EXPECT_EQ(done.notes.size(), 1U);
  EXPECT_EQ(refused.str(), "P Id 1; C row 1; C row 2; ");
  EXPECT_EQ(digestOf(*to, "C", {"P"}).rows, 2U);
  EXPECT_EQ(failureOf([&] { failAtRow({"P", "Id 1", "it is wrong", {}, {}}); }), err::dbConversion);
}

}  // namespace
}  // namespace voxa
