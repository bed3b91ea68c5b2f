#include <gtest/gtest.h>

#include <sstream>

#include "engines/language/dialect.h"
#include "engines/sqlite/fixture.h"

namespace voxa {
namespace {

class Language : public DatabaseTest {
 protected:
  Language() { createTables(); }

  static void expectRule(const char* rule, const FieldDef& field, const char* condition) {
    EXPECT_EQ(dialect::translateRule(rule, field), condition) << rule;
  }
  int number(const std::string& sql) {
    return errorOf([&] { (void)db->openRecordset(sql); });
  }
};

TEST_F(Language, NamesTheColumnsOfAResult) {
  const auto columns = [&](const char* sql) {
    std::string names;
    const auto rows = db->openRecordset(sql);
    for (std::size_t i = 0; i < rows->fieldCount(); ++i) names += (i > 0 ? "," : "") + rows->field(i).name;
    return names;
  };
  EXPECT_EQ(columns("select *, Id + 1, Name as N, T.Since, 1 from Stations as T where Id > 0 order by Id"),
            "Id,Name,Active,T.Since,Expr1004,N,T.Since,Expr1007");
  EXPECT_EQ(columns("select x.*, y.Id from Stations x, Readers as y"), "x.Id,Name,Active,Since,y.Id");
  EXPECT_EQ(columns("select top 3 t!name from Stations t"), "Name");
}

TEST_F(Language, ASecretColumnIsMaskedByAStarAndUsedByNothing) {
  db->createTable({"Codes", {{"pincode", DataType::Text, 10}}, {{"Unique", {"pincode"}, false, true}}});
  db->execute("insert into Codes values ('2468')");
  db->createQuery({"Stored", "select Name from Stations where Active"});
  const auto careful = makeSqliteEngine(clock, {.secrets = {{"", "PINCode"}, {"Stations", "Active"}}});
  const auto guarded = careful->open(file);
  guarded->execute("create view Hidden as select pincode as P from Codes");
  const auto shown = [&](const char* sql) {
    std::string all;
    for (const auto rows = guarded->openRecordset(sql); !rows->eof(); rows->moveNext()) {
      for (std::size_t i = 0; i < rows->fieldCount(); ++i)
        all += rows->field(i).name + "=" + (rows->get(i).isNull() ? "" : rows->get(i).toText()) + " ";
    }
    return all;
  };
  EXPECT_EQ(shown("Codes"), "pincode=**** ");
  EXPECT_EQ(shown("select top 1 * from Codes, Stations s where exists (select * from Codes) order by s.Id"),
            "pincode=**** Id=1 Name=North Active=**** Since= ");
  EXPECT_EQ(shown("select * from (select * from Codes union select Name from Stations where Id = 1) as q"),
            "pincode=**** pincode=**** ");
  std::istringstream attempts(
      "select PINCode from Codes|select [pinCODE] as x from Codes|select c.pincode & '' from Codes c|"
      "select iif(pincode > '2', 1, 0) from Codes|select count(pincode) from Codes|"
      "select 1 from Codes where pincode is null|select 1 from Codes group by pincode|Stored|"
      "select count(*) from Codes having max(pincode) > '2'|select 1 from Codes order by pincode|"
      "select * from Codes order by 1|select distinct * from Codes|"
      "select pincode.* from Codes as pincode order by 1|"
      "select top 1 Id from Stations order by Active|select Format(Active, 'Yes/No') from Stations|"
      "select 1 from Stations s inner join Codes c on c.pincode = s.Name|"
      "select 1 from Stations s left join Codes c on s.Active|"
      "select (select pincode from Codes) from Stations|select (select * from Codes) from Stations|"
      "select '2468' in (select * from Codes)|select '2468' in (select pincode from Codes)|"
      "select 1 from Codes where exists (select 1 where pincode > '2')|"
      "insert into Stations (Id, Name) select 3, pincode from Codes|"
      "insert into Stations (Name) select * from Codes|insert into Stations select * from Stations|"
      "insert into Codes values ('2468')|insert into Codes (pincode) values ('2468')|"
      "update Stations set Name = (select pincode from Codes)|update Codes set pincode = '2468'|"
      "update Stations set Name = Name where Active|delete from Codes where pincode like '2*'|"
      "select pincode from (select * from Codes) as q|select x from (select pincode as x from Codes) as q|"
      "select '1' < any (select pincode from Codes)|select '1' < all (select * from Codes)|"
      "select Name from Stations union select pincode from Codes|select * into Copy from Codes|"
      "update Stations s, Codes c set s.Name = c.pincode|"
      "delete s.* from Stations s inner join Codes c on c.pincode > '2'|Hidden|select P from Hidden|"
      "create index I on Codes (pincode)|alter table Codes alter column pincode text(2)|"
      "create table F (Name text(9) references Codes (pincode))|alter table Codes drop pincode|"
      "create table F (pincode long references Readers (Id))");
  int tried = 0;
  for (std::string sql; std::getline(attempts, sql, '|'); ++tried) {
    const bool changes = sql.starts_with("insert") || sql.starts_with("update") ||
                         sql.starts_with("delete") || sql.starts_with("create") || sql.starts_with("alter") ||
                         sql.find(" into ") != sql.npos;
    EXPECT_EQ(errorOf([&] { changes ? (void)guarded->execute(sql) : (void)guarded->openRecordset(sql); }),
              err::dbNoPermission)
        << sql;
  }
  EXPECT_EQ(tried, 46);
  EXPECT_EQ(errorOf([&] { guarded->openRecordset("Codes")->edit(); }), err::dbNotUpdatable);
  EXPECT_EQ(errorOf([&] { (void)guarded->openRecordset("select Id from Stations")->findFirst("Active"); }),
            err::dbNoPermission);
  EXPECT_EQ(guarded->execute("delete from Codes"), 1);
}

TEST_F(Language, TakesAParameterBeforeAFieldOfThatName) {
  const std::string query =
      "PARAMETERS [Id] Integer, [at] DateTime; select Name from Stations s where s.Id = [Id] or Since > [at]";
  EXPECT_EQ(db->openRecordset(query, {{"id", std::int32_t{2}}, {"AT", Value("1/1/2030")}})->get(0),
            Value("South"));
  EXPECT_EQ(errorOf([&] {
              (void)db->openRecordset(query, {{"id", std::int32_t{2}}});
            }),
            err::dbTooFewParameters);
  EXPECT_EQ(
      number("parameters p Integer, q Integer; select Left(Name, p) from Stations group by Left(Name, q)"),
      err::dbNotAggregated);
}

TEST_F(Language, TakesStoredQueriesForTables) {
  db->createQuery(
      {"Norths", "PARAMETERS [p] Text; select Id, Name from Stations where Name like [p] or Id = 7"});
  db->createQuery(
      {"Both", "select n.Name & '!' as N, s.Id from Norths n inner join Stations s on s.Id = n.Id"});
  const auto rows =
      db->openRecordset("select N, 9 from Both where Id < 5 and 'x' = 'x' order by N", {{"p", "n*"}});
  EXPECT_EQ(rows->get(0), Value("North!"));
  EXPECT_EQ(rows->recordCount(), 1U);
  EXPECT_EQ(number("select * from Both"), err::dbTooFewParameters);
  db->createQuery({"Loop", "select * from Again"});
  db->createQuery({"Again", "select * from Loop"});
  EXPECT_EQ(number("Loop"), err::dbCircular);
}

// Depth is limited, by SQLite or before it. Length is not.
TEST_F(Language, LimitsTheDepthOfAStatementAndNotItsLength) {
  const auto repeated = [](const char* text, int times) {
    std::string out;
    while (times-- > 0) out += text;
    return out;
  };
  const std::string from = "select Id from Stations where Id = 1 and ";
  EXPECT_EQ(number(from + repeated("(", 90) + "Id = 1" + repeated(")", 90)), 0);
  EXPECT_EQ(number(from + repeated("(", 9000)), err::dbSyntax);
  EXPECT_EQ(number(from + repeated("not ", 9000) + "Active"), err::dbSyntax);
  for (const auto& [open, middle] : {std::pair{"1 - (0 * ", "1"},
                                     {"iif(Active, 1, ", "1"},
                                     {"InStr(1, Name, ", "'x'"},
                                     {"0 in (2, ", "1"},
                                     {"-(1 = ", "1"},
                                     {"('x' like ", "1"},
                                     {"1 & (0 & ", "1"},
                                     {"1 & (7 - not 6 & ", "1"},
                                     {"1 + 1 mod (1 + ", "2"},
                                     {"1.5 * (0.5 + ", "Id"},
                                     {"1 = (select Id from Stations where Id = 1 and ", "Id > 0"},
                                     {"0 between 1 and (", "1"},
                                     {"0 in (select Id from Stations where ", "Active"}}) {
    for (int depth = 1; depth < 40; ++depth) {
      const int result = number(from + repeated(open, depth) + middle + repeated(")", depth));
      EXPECT_TRUE(result == err::dbSyntax ? depth > 4 : result == 0) << open << depth << ' ' << result;
    }
  }
  EXPECT_EQ(number(from + "(Id = 0" + repeated(" or Id = 1", 9000) + ")"), 0);
  EXPECT_EQ(number(from + "(Id = 0" + repeated(" and (Id = 1 or Id = 2)", 2000) + ")"), 0);
  EXPECT_EQ(number(from + "'' <> ''" + repeated(" & 'x'", 800)), 0);
  EXPECT_EQ(number(from + "0.5 < 1.5" + repeated(" * 1.5 + 0.5", 400)), 0);
}

TEST_F(Language, KeysAStatementByItsShape) {
  dialect::Scanned a;
  dialect::Scanned b;
  const auto sameKey = [&](std::string_view first, std::string_view second) {
    dialect::scan(first, a);
    dialect::scan(second, b);
    return a.key == b.key;
  };
  EXPECT_TRUE(sameKey("select x from [t1] where a = 1and b='it''s' or c=#1/2/2000#or d=\"\"",
                      "select x from [t1] where a = 25and b='' or c=#12/31/2000#or d=\"x\"\"y\""));
  EXPECT_FALSE(sameKey("select 1", "select 1.0"));
  EXPECT_FALSE(sameKey("select 1", "select 2147483648"));
  EXPECT_FALSE(sameKey("select 1", "select '1'"));
  EXPECT_FALSE(sameKey("select top 1 a from t", "select top 2 a from t"));
  EXPECT_FALSE(sameKey("select a, b from t order by a, 1", "select a, b from t order by a, 2"));
  EXPECT_FALSE(sameKey("select a from t where b=True", "select a from t where b=False"));
  EXPECT_TRUE(sameKey("select a from t order by f(a, 1)", "select a from t order by f(a, 2)"));
  dialect::scan("a = 1and b='it''s' or c=#1/2/2000#or d=\"x\"\"y\" or e=1.5e3eqv 1e", a);
  const std::vector<Value> literals = {std::int32_t{1}, "it's", DateTime{36527},
                                       "x\"y",          1500.0, std::int32_t{1}};
  EXPECT_EQ(a.literals, literals);
}

TEST_F(Language, KeysAStatementAlikeWhateverWasReadBefore) {
  dialect::Scanned reused;
  // Each statement begins as the one before it, up to one of its literals. Then it goes on with another
  // token.
  std::istringstream statements(
      "a<1|a<=1|t1'x'|t12|a.'x'|a.5|a='x|a='x' and b = 1|select a from t order by 'x'|"
      "select a from t order by 1, 2|select a from t order by f(1), 2|select a from t order by f(|top 'x'|"
      "top 5|'x'|1||t where a = 1|t where a = |t where a = 'y' or b = #1/2/2000#|"
      "a=1 and b=2|a='1' and b=2|a=1 and b='2'|a=1 and b=2 or c=3|a=1 or b=2 or c=3|a=1 or b=2or c=.5|"
      "a=1 order by f('x'), 2|a=1 order by f(3), 'x'|a=1 order by f(3), 2|a=1 order by f(3|a=1|"
      "f(1, 2)|f(1), 2|a=1 )2|a=1 ,2|a=1 ,2, 3|a=1and'x'and b=2|a=1and\x07"
      "and b=2|a= 1|a=  1");
  for (std::string sql; std::getline(statements, sql, '|');) {
    dialect::Scanned fresh;
    const auto scanned = [&](dialect::Scanned& out) {
      try {
        dialect::scan(sql, out);
        return out.key;
      } catch (const Error& error) {
        return error.description();
      }
    };
    EXPECT_EQ(scanned(reused), scanned(fresh)) << sql;
    EXPECT_EQ(reused.literals, fresh.literals) << sql;
  }
}

TEST_F(Language, TurnsValidationRulesIntoConditions) {
  FieldDef n;
  n.name = "N\"r";
  n.type = DataType::Byte;
  expectRule(">=0 and <=32", n, R"("N""r" >= 0 AND "N""r" <= 32)");
  expectRule("Between 1 And 5 Or Is Null", n, R"("N""r" BETWEEN 1 AND 5 OR "N""r" IS NULL)");
  expectRule("[N\"r] > 3.5 or >'2'", n, R"("N""r" > 3.5 OR "N""r" > 2.0)");
  expectRule("1 or 2", n, R"("N""r" = 1 OR "N""r" = 2)");
  FieldDef t;
  t.name = "Ty";
  expectRule("In ('a?','it''s')", t, R"("Ty" IN ('a?', 'it''s'))");
  expectRule("<>\"\" and not like \"x*\"", t, R"("Ty" <> '' AND NOT (vx_like("Ty", 'x*')))");
  expectRule("Len([Ty]) = 2", t, R"(length("Ty") = 2)");
  for (const char* rule : {"", ">=", ">0;", "[Other] > 1", "Soundex([Ty]) = 1", "in (select <1)"}) {
    try {
      ADD_FAILURE() << rule << " became " << dialect::translateRule(rule, t);
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), err::dbSyntax) << rule;
    }
  }
}

}  // namespace
}  // namespace voxa
