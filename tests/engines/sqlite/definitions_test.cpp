#include "engines/sqlite/fixture.h"

namespace voxa {
namespace {

class Definitions : public DatabaseTest {};

TableDef everything() {
  return {"Über \"all\"",
          {{.name = "Id", .type = DataType::Long, .autoIncrement = true},
           {"Flag", DataType::Boolean},
           {"On", DataType::Boolean, 0, true},
           {"Off", DataType::Boolean, 0, false, true},
           {"Level", DataType::Byte, 0, std::uint8_t{7}, false, false, false, ">=0 and <=32"},
           {"Short", DataType::Integer, 0, std::int16_t{-5}, true},
           {"Large", DataType::Double, 0, 1.5e-9},
           {"When it is", DataType::Date, 0, DateTime{36526.25}},
           {"Letter", DataType::Text, 1, "C", false, false, false, "In ('C', 'E')"},
           {"Quote", DataType::Text, 255, "it's \"x\", (y)", true, true},
           {"Free", DataType::Memo, 0, {}, false, true},
           {"Strict", DataType::Memo},
           {"Few", DataType::Binary, 510},
           {"Picture", DataType::LongBinary}},
          {{"Key", {"Id"}, true, true, true},
           {"Pair", {"Short", "Letter"}, false, true, true},
           {"Loose", {"Large"}, false, true, false},
           {"Plain", {"When it is", "Level"}, false, false, false}}};
}

TEST_F(Definitions, ReadBackAsTheyWereMade) {
  TableDef pair{
      "Pair", {{"A", DataType::Integer}, {"B", DataType::Text, 3}}, {{"Key", {"A", "B"}, true, true, true}}};
  db->createTable(everything());
  db->createTable(pair);
  const FieldDef added{"Late", DataType::Text, 4, "none", true, false, false, "<>'bad'"};
  db->addField("pair", added);
  pair.fields.push_back(added);
  for (const bool again : {false, true}) {
    if (again) reopen();
    EXPECT_EQ(db->tableDef("ÜBER \"ALL\""), everything());
    EXPECT_EQ(db->tableDef("Pair"), pair);
    EXPECT_EQ(db->tableNames(), (std::vector<std::string>{"Über \"all\"", "Pair"}));
  }
}

TEST_F(Definitions, BadOnesAreRefusedWhole) {
  createTables();
  const auto table = [](std::vector<FieldDef> fields, std::vector<IndexDef> indexes = {}) {
    return TableDef{"T", std::move(fields), std::move(indexes)};
  };
  const FieldDef a{"A", DataType::Long};
  const std::pair<TableDef, int> cases[] = {
      {{"stations", {a}, {}}, err::dbTableExists},
      {{"_queries", {a}, {}}, err::dbTableExists},
      {{"a.b", {a}, {}}, err::dbInvalidName},
      {table({}), err::dbInvalidArgument},
      {table({a, {"a", DataType::Date}}), err::dbDuplicateField},
      {table({a}, {{"I", {"B"}}}), err::dbNotInCollection},
      {table({{.name = "A", .type = DataType::Long, .autoIncrement = true},
              {.name = "B", .type = DataType::Long, .autoIncrement = true}}),
       err::dbInvalidArgument},
      {table({{"A", DataType::Text, 256}}), err::dbInvalidArgument},
      {table({{"A", DataType::Binary, 511}}), err::dbInvalidArgument},
      {table({{"A", DataType::Binary, 0, "default"}}), err::dbInvalidArgument},
      {table({{.name = "A", .type = DataType::Byte, .defaultValue = 300}}), err::overflow},
      {table({{.name = "A", .type = DataType::Byte, .validationRule = ">= <="}}), err::dbSyntax}};
  for (const auto& bad : cases) {
    EXPECT_EQ(failure([&] { db->createTable(bad.first); }), bad.second) << lastDescription;
  }
  EXPECT_EQ(failure([&] {
              db->createTable(table({a}, {{"I", {"A"}}, {"i", {"A"}}}));
            }),
            err::dbInvalidArgument);
  EXPECT_EQ(lastDescription, "Index 'i' of table 'T' is defined twice");
  EXPECT_EQ(failure([&] { (void)db->tableDef("T"); }), err::dbUnknownTable);
  EXPECT_EQ(failure([&] { db->addField("Nowhere", a); }), err::dbUnknownTable);
  EXPECT_EQ(failure([&] { db->addField("Stations", {"active", DataType::Long}); }), err::dbDuplicateField);
  EXPECT_EQ(
      failure([&] { db->addField("Stations", {.name = "X", .type = DataType::Long, .required = true}); }),
      err::dbRequired);
  EXPECT_EQ(db->tableNames().size(), 2U);
}

TEST_F(Definitions, AnAddedFieldGivesTheRowsItsDefault) {
  createTables();
  const auto before = db->openRecordset("Stations");
  db->addField("Stations", {.name = "Line", .type = DataType::Integer, .defaultValue = 9});
  db->addField("Stations", {"Open", DataType::Boolean});
  EXPECT_EQ(valueOf("select Line from Stations where Id = 2"), Value(std::int16_t{9}));
  EXPECT_EQ(valueOf("select Open from Stations where Id = 2"), Value(false));
  EXPECT_EQ(before->get("Name"), Value("North"));
  EXPECT_EQ(db->openRecordset("Stations")->fieldCount(), before->fieldCount() + 2);
}

TEST_F(Definitions, ChangesOfAnotherUserAreSeen) {
  createTables();
  EXPECT_EQ(db->execute("update Stations set Active = False"), 2);
  const auto other = engine->open(file);
  other->deleteTable("Stations");
  TableDef stations{"Stations", {{"Id", DataType::Long}, {"Active", DataType::Text, 5}}, {}};
  other->createTable(stations);
  other->execute("insert into Stations (Id, Active) values (1, 'x')");
  EXPECT_EQ(db->execute("update Stations set Active = False"), 1);
  EXPECT_EQ(valueOf("select Active from Stations").isText(), true);
  EXPECT_EQ(db->tableDef("Stations"), stations);
}

// A key that is part of the table's text goes and comes back as an index of its own; a transaction takes all
// of it back, and another user follows every step.
TEST_F(Definitions, KeysAndFieldsOfATableWithRowsChange) {
  db->execute("create table P (A long constraint K primary key, B text(3) not null)");
  db->execute("create table C (A long constraint R references P on delete cascade, Old text(9), New byte)");
  db->execute("insert into P values (1, 'x')");
  db->execute("insert into C values (1, 'y', 2)");
  const TableDef p = db->tableDef("P");
  const TableDef c = db->tableDef("C");
  const auto other = engine->open(file);
  EXPECT_EQ(failure([&] { db->deleteIndex("P", "K"); }), err::dbInUse);
  for (const bool kept : {false, true}) {
    engine->begin();
    db->deleteRelation("r");
    db->deleteIndex("P", "k");
    db->execute("insert into P values (1, 'z')");
    EXPECT_EQ(failure([&] { db->addIndex("P", p.indexes[0]); }), err::dbDuplicate);
    db->execute("delete from P where B = 'z'");
    db->addIndex("P", p.indexes[0]);
    db->deleteField("C", "Old");
    db->alterField("C", {.name = "New", .type = DataType::Text, .size = 5});
    db->execute("alter table C add constraint R2 foreign key (A) references P on delete cascade");
    kept ? engine->commit() : engine->rollback();
    if (!kept) {
      EXPECT_EQ(db->tableDef("C"), c);
      EXPECT_EQ(db->relations()[0].name, "R");
    }
  }
  for (const auto& user : {db, other}) {
    EXPECT_EQ(user->tableDef("P"), p);
    EXPECT_EQ(user->tableDef("C").fields.size(), 2U);
    EXPECT_EQ(user->openRecordset("C")->get("New"), Value("2"));
    EXPECT_EQ(failure([&] { user->execute("insert into P values (1, 'w')"); }), err::dbDuplicate);
    EXPECT_EQ(failure([&] { user->execute("insert into P (B) values ('w')"); }), err::dbNullKey);
  }
  other->execute("create procedure Q as delete from P");
  EXPECT_EQ(db->execute("Q"), 1);
  EXPECT_EQ(valueOf("select count(*) from C"), Value(0));
  other->deleteQuery("Q");
  other->createQuery({"Q", "insert into P values (5, 'v')"});
  EXPECT_EQ(db->execute("Q"), 1);
  EXPECT_EQ(valueOf("select A from P"), Value(5));
  reopen();
  EXPECT_EQ(db->tableDef("P"), p);
}

TEST_F(Definitions, StoredQueriesRunWithTheirParameters) {
  createTables();
  db->createQuery(
      {"By State", "PARAMETERS [Active] Bit; select Name from Stations where Stations.Active = [Active]"});
  db->createQuery({"Clear", "delete * from Readers"});
  reopen();
  ASSERT_EQ(db->queries().size(), 2U);
  EXPECT_EQ(db->queries()[1].sql, "delete * from Readers");
  EXPECT_EQ(db->openRecordset("by state", {{"active", false}})->get(0), Value("South"));
  EXPECT_EQ(db->openRecordset("[By State]", {{"Active", true}})->get(0), Value("North"));
  db->execute("insert into Readers (Name) values ('a')");
  EXPECT_EQ(db->execute("clear"), 1);
  EXPECT_EQ(failure([&] { (void)db->openRecordset("By State"); }), err::dbTooFewParameters);
  EXPECT_EQ(failure([&] { (void)db->openRecordset("By State", {{"Active", "maybe"}}); }), err::dbConversion);
  EXPECT_EQ(failure([&] { (void)db->openRecordset("Clear"); }), err::dbInvalidOperation);
  EXPECT_EQ(executeFailure("By State"), err::dbSelectExecuted);
  EXPECT_EQ(failure([&] { db->createQuery({"CLEAR", "x"}); }), err::dbObjectExists);
  EXPECT_EQ(db->tableNames().size(), 2U);
}

}  // namespace
}  // namespace voxa
