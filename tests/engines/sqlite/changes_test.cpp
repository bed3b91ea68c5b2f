#include "engines/sqlite/fixture.h"

namespace voxa {
namespace {

class Changes : public DatabaseTest {
 protected:
  void SetUp() override { createTables(); }
};

TEST_F(Changes, WhatBreaksADefinitionHasItsNumberAndNamesThePlace) {
  db->execute("insert into Readers (Name) values ('Élan')");
  const std::tuple<const char*, int, const char*> cases[] = {
      {"insert into Stations (Id, Name) values (1, 'x')", err::dbDuplicate, "'Stations'"},
      {"insert into Stations (Id, Name) values (9, 'NORTH')", err::dbDuplicate, "'Name'"},
      {"insert into Readers (Id, Name) values (1, 'x')", err::dbDuplicate, "'Readers'"},
      {"insert into Stations (Name) values ('x')", err::dbNullKey, "'Id'"},
      {"insert into Stations (Id) values (9)", err::dbNullKey, "'Name'"},
      {"insert into Readers (Position) values (1)", err::dbRequired, "'Name'"},
      {"update Readers set Name = Null", err::dbRequired, "'Readers'"},
      {"insert into Readers (Name) values ('')", err::dbZeroLength, "'Name'"},
      {"insert into Readers (Name, Position) values ('x', 33)", err::dbValidationRule, ">=0 and <=32"},
      {"insert into Readers (Name, Position) values ('x', 300)", err::overflow, ""},
      {"update Readers set Position = Position + 1000", err::overflow, ""},
      {"insert into Readers (Name, Position) values ('x', 'high')", err::dbConversion, ""},
      {"insert into Stations (Id, Name) values (9, 'eleven char')", err::dbTextTooLong, ""},
      {"insert into Stations (Id, Name, Since) values (9, 'x', 'never')", err::dbConversion, ""},
      {"insert into Nowhere (Id) values (1)", err::dbUnknownTable, ""},
      {"delete * from Stations; delete * from Readers", err::dbSyntax, ""},
      {"select * from Stations", err::dbSelectExecuted, ""}};
  for (const auto& [sql, number, names] : cases) {
    EXPECT_EQ(executeFailure(sql), number) << sql << ": " << lastDescription;
    EXPECT_NE(lastDescription.find(names), std::string::npos) << lastDescription;
  }
  const std::vector<std::pair<const char*, int>> sources = {{"Nowhere", err::dbUnknownTable},
                                                            {" [No where] ", err::dbUnknownTable},
                                                            {"select", err::dbSyntax},
                                                            {"selct Id", err::dbSyntax},
                                                            {"", err::dbSyntax},
                                                            {"5", err::dbSyntax}};
  for (const auto& [source, error] : sources) {
    EXPECT_EQ(failure([&, name = source] { (void)db->openRecordset(name); }), error) << source;
  }
  EXPECT_EQ(countOf("Stations"), 2);
  EXPECT_EQ(countOf("Readers where Name = 'éLAN' and Position = 1 and Note is null"), 1);
}

TEST_F(Changes, AStatementThatFailsHalfWayChangesNothing) {
  EXPECT_EQ(db->execute("update Stations set Since = #1/2/2000#"), 2);
  EXPECT_EQ(executeFailure("update Stations set Name = 'same'"), err::dbDuplicate);
  engine->begin();
  EXPECT_EQ(db->execute("delete from Stations where Id = 2"), 1);
  EXPECT_EQ(executeFailure("insert into Stations (Id, Name) values (1, 'x')"), err::dbDuplicate);
  EXPECT_TRUE(engine->inTransaction());
  engine->commit();
  EXPECT_EQ(valueOf("select Name from Stations"), Value("North"));
  EXPECT_EQ(valueOf("select Since from Stations"), Value(DateTime{36527}));
}

TEST_F(Changes, StatementsThatDifferInLiteralsAreOne) {
  const auto run = [&](int i) {
    db->execute("insert into Readers (Name, StationId) values ('r" + std::to_string(i) + "', 1)");
    const auto rows = db->openRecordset("select * from Readers where Name = 'r" + std::to_string(i) + "'");
    rows->edit();
    rows->set("Position", i);
    rows->set("Note", "n" + std::to_string(i));
    rows->update();
  };
  run(0);
  const std::size_t before = preparedStatements(*db);
  for (int i = 1; i < 30; ++i) run(i);
  EXPECT_EQ(preparedStatements(*db), before);
  EXPECT_EQ(valueOf("select Note from Readers where Position = 29"), Value("n29"));
  // The literals decide, too, whether an expression is one that GROUP BY lists, whichever statement came
  // first.
  const auto grouping = [&](const char* shown, const char* others) {
    return failure([&] {
      (void)db->openRecordset("select Left(Name, " + std::string(shown) +
                              ") from Stations group by Left(Name, 1), Left(Name, " + others + ")");
    });
  };
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(grouping("1", "2"), 0);
    EXPECT_EQ(grouping("2", "2"), 0);
    EXPECT_EQ(grouping("2", "3"), err::dbNotAggregated);
  }
  // More texts than are kept. The oldest go, and are prepared again when they are needed.
  for (int i = 0; i < 300; ++i)
    (void)db->openRecordset("select Id as x" + std::to_string(i) + " from Readers");
  run(31);
  EXPECT_EQ(countOf("Readers"), 31);
}

TEST_F(Changes, CommandsRunWithOtherValuesEachTime) {
  const auto add = db->prepare(
      "parameters pName memo, pSince datetime, pId long; "
      "insert into Stations (Id, Name, Since, Active) values (pId, pName, pSince, 'True')");
  const Value since = DateTime{40000.5};
  EXPECT_EQ(add->execute({"East's", since, 3}), 1);
  EXPECT_EQ(add->execute({"West", "01/02/2020", "4"}), 1);  // converted in the same way as literals
  EXPECT_EQ(valueOf("select Since from Stations where Name = 'East''s' and Active"), since);
  EXPECT_EQ(valueOf("select Id from Stations where Since = #2/1/2020#"), Value(std::int16_t{4}));

  EXPECT_EQ(failure([&] { return add->execute({"West", since, 5}); }), err::dbDuplicate);
  EXPECT_EQ(failure([&] { return add->execute({"Longer than ten", since, 5}); }), err::dbTextTooLong);
  EXPECT_EQ(failure([&] { return add->execute({"Fifth", since}); }), err::dbTooFewParameters);
  EXPECT_EQ(failure([&] { return db->prepare("select * from Stations"); }), err::dbSelectExecuted);
  EXPECT_EQ(countOf("Stations"), 4);

  db->addField("Stations", {"Phone", DataType::Text, 5, "none"});  // it was made for another schema
  EXPECT_EQ(add->execute({"Fifth", since, 5}), 1);
  EXPECT_EQ(valueOf("select Phone from Stations where Id = 5"), Value("none"));
  engine->begin();
  EXPECT_EQ(add->execute({"Sixth", since, 6}), 1);
  engine->rollback();
  EXPECT_EQ(countOf("Stations"), 5);
  // Names that nothing declares come behind the parameters, also behind those of a stored query.
  db->createQuery({"Since", "parameters pFrom datetime; select Id from Stations where Since >= pFrom"});
  const std::string text =
      "parameters pName text; update Stations set Name = pName & pEnd where Id in (select Id from Since)";
  const QueryInfo info = db->describe(text);
  EXPECT_EQ(info.kind, QueryInfo::Kind::update);
  EXPECT_EQ(info.declared, 2U);
  ASSERT_EQ(info.parameters.size(), 3U);
  EXPECT_EQ(info.parameters[1].name, "pFrom");
  EXPECT_EQ(info.parameters[1].type, DataType::Date);
  EXPECT_EQ(db->prepare(text)->execute({"No", "01/03/2020", "ne"}), 0);
  EXPECT_EQ(failure([&] {
              return db->prepare(text)->execute({"N", "01/02/2020"});
            }),
            err::dbTooFewParameters);
  EXPECT_EQ(db->execute(text, {{"pend", "!"}, {"pFrom", "01/02/2020"}, {"pName", "W"}}), 1);
  EXPECT_EQ(valueOf("select Name from Stations where Id = 4"), Value("W!"));
  EXPECT_EQ(db->describe("Stations").columns.size(), 5U);
  EXPECT_EQ(db->describe("select 1 union select 2").kind, QueryInfo::Kind::unite);
  db->close();
  EXPECT_EQ(failure([&] { return add->execute({"Sixth", since, 6}); }), err::dbInvalidObject);
}

TEST_F(Changes, NumberedFieldsCountOnFromAGivenValue) {
  db->execute("insert into Readers (Name, Id) values ('a', 0)");
  db->execute("insert into Readers (Name) values ('b')");
  db->execute("insert into Readers (Name, Id) values ('c', 40)");
  db->execute("delete from Readers where Id = 40");
  db->execute("insert into Readers (Name) values ('d')");
  EXPECT_EQ(valueOf("select Id from Readers where Name = 'b'"), Value(1));
  EXPECT_EQ(valueOf("select Id from Readers where Name = 'd'"), Value(41));
}

// Everything that reads a year of two digits is tested in 2031 and 2079.
TEST_F(Changes, CenturiesAreThoseOfTheEnginesClock) {
  for (const auto& [year, text, read] :
       {std::tuple(2031, "1/2/35", "01/02/2035"), {2079, "1/2/20", "01/02/2120"}}) {
    const FixedClock then({year, 6, 15});
    const auto itsEngine = makeSqliteEngine(then);
    const auto its = itsEngine->open(file);
    const std::string quoted = "'" + std::string(text) + "'";
    const std::string digits = std::string(text).substr(4);
    for (const std::string& expression :
         {"#2/1/" + digits + "#", "CDate(" + quoted + ")", "DateSerial(" + digits + ", 2, 1)",
          "CDate(Format(" + quoted + ", 'dd/mm/yyyy'))"}) {
      EXPECT_EQ(
          its->openRecordset("select " + expression + " as D from Stations where Id = 1")->get("D").toText(),
          read)
          << expression;
    }
    EXPECT_EQ(its->execute("update Stations set Since = " + quoted + " where Id = 1"), 1);
    const auto row = its->openRecordset("select * from Stations where Since = " + quoted);
    ASSERT_FALSE(row->eof());
    EXPECT_EQ(row->get("Since").toText(), read);
    row->edit();
    row->set("Since", text);
    EXPECT_EQ(row->get("Since").toText(), read);
  }
}

}  // namespace
}  // namespace voxa
