#include <gtest/gtest.h>

#include <sstream>

#include "engines/language/bench_database.h"
#include "platform/error.h"

namespace voxa {
namespace {

struct Case {
  const char* sql;
  const char* result;
};

class Language : public testing::Test {
 protected:
  Language() {
    db_.add("T: Id l Name t10 Code t8 Small i Tiny y Flag b Real d At D Note m");
    db_.add("U: Id l Tid l Kind t3");
    db_.add("V: Id l Uid l");
    expect({
        {"insert into T values (1, 'Éric', '0007', 5, 2, True, 1.5, #12/31/2025 6:00:00#, 'a')", "1"},
        {"insert into T values (2, 'anna', '7', -5, 0, False, -1.5, '01/02/2026', Null)", "1"},
        {"insert into T (Id, Name, Code) values (3, 'ANNA', 'x7')", "1"},
        {"insert into U values (1, 1, 'a')", "1"},
        {"insert into U values (2, 1, 'B')", "1"},
        {"insert into U values (3, 9, 'c')", "1"},
        {"insert into V values (1, 2)", "1"},
    });
  }

  void expect(std::initializer_list<Case> cases) {
    for (const Case& c : cases) EXPECT_EQ(db_.attempt(c.sql), c.result) << c.sql;
  }
  /// The value of an expression over the first row of T.
  void expectValues(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
      EXPECT_EQ(db_.attempt("select " + std::string(c.sql) + " from T where Id = 1"), c.result) << c.sql;
    }
  }
  void expectRule(const char* rule, const FieldDef& field, const char* condition) {
    EXPECT_EQ(dialect::translateRule(rule, field), condition) << rule;
  }

  BenchDatabase db_;
};

TEST_F(Language, ComparesByTheTypesOfBothSides) {
  expect({
      {"select Id from T where Name = 'ÉRIC'", "1"},
      {"select Id from T where 'aNNa' = Name and Name & '' = 'anna'", "2;3"},
      {"select Id from T where Name in ('x', 'Anna') order by Id desc", "3;2"},
      {"select Id from T where Left(Name, 2) in ('AN') and Left(Name, 2) between 'am' and 'AO'", "2;3"},
      {"select Id from T where Name like 'a*[!b-m]A' and Name not like '#*' and Code like '?7'", "3"},
      {"select Id from T where Code = 7", "1;2"},
      {"select Id from T where Code between 7 and 7.5 and Code in (1, 7)", "1;2"},
      {"select Id from T where Small = '5' or Small = '4.9'", "1"},
      {"select Id from T where Small = 'five'", "!3421"},
      {"select Id from T where At = '01/02/2026'", "2"},
      {"select Id from T where At > #12/31/2025# and At < #2026-01-01#", "1"},
      {"select Id from T where At between '31/12/2025' and '01/02/2026'", "1;2"},
      {"select Id from T where At = 'soon'", "!3421"},
      {"select Id from T where Flag = 'True' or Flag = Yes", "1"},
      {"select Id from T where Flag = 1", ""},
      {"select Id from T where Flag = (Small > 0)", "1;2"},
      {"select Id from T where not Flag and Small is not null", "2"},
      {"select Id from T where Note = Null or Note <> 'b'", "1"},
      {"select Id from T where Flag xor Id = 1 or Id = 2", "2"},
      {"select Id from T where Flag eqv Id = 1 and Id < 3", "1;2;3"},
      {"select Id from T where Flag imp Id = 7", "2;3"},
      {"select Id from T where Id = 1 or Id = 2 and Id = 3", "1"},
      {"select Id from T where not Id = 1 and Id <= 2", "2"},
  });
}

TEST_F(Language, ComputesAsTheEngineDoes) {
  expectValues({
      {"True, Id = 1, not Id = 1, (Id = 1) + 1", "-1|-1|0|0"},
      {"7 / 2, 7 \\ 2, 7.5 \\ 2, -7 mod 3, -2 ^ 2, 2 ^ -1", "3.5|3|4|-1|-4.0|0.5"},
      {"2 + 3 * 4 - 1 - 1, 7 mod 4 + 1, 12 / 2 * 3, 10 - -(-1)", "12|4|18.0|9"},
      {"'a' + Name, 'a' + Null, 'a' & Null & 1 & True & 1.50", "aÉric|-|a1True1.5"},
      {"'2' + 3, Code + 1, Code & 1, At + 1 & ''", "5.0|8.0|00071|01/01/2026 06:00:00"},
      {"2147483648, 1e3, .5, 1., #1/2/2000#", "2147483648.0|1000.0|0.5|1.0|36527.0"},
      {"iif(Flag, 'y', 'n'), iif(Id = 2, 1, 2.5), iif(Flag, 1, 'n')", "y|2.5|1"},
      {"abs(Flag), Int(-1.5), Fix(-1.5), Sgn(Real), Round(2.5), Round(1.235, 1)", "1|-2.0|-1.0|1|2.0|1.2"},
      {"Len(Name), Left(Name, 2), Right(Name, 0), Right(Name, 4), Mid(Name, 2, 2), Mid(Name, 9)",
       "4|Ér||Éric|ri|"},
      {"UCase('é'), LCase(Name), Trim(' a '), InStr(Name, 'I'), InStr(4, Name, 'i'), Val(' 1 2x')",
       "É|éric|a|3|0|12.0"},
      {"CStr(Small), CInt('2'), CLng(2.5), CDbl('1.5'), CBool('true'), CDate('01/02/2026')",
       "5|2|2|1.5|-1|46054.0"},
      {"Year(At), Month(At), Day(At), Hour(At), Minute(At), Second(At), Weekday(At)", "2025|12|31|6|0|0|4"},
      {"Now(), Date(), Time(), DateValue('31/12/2025'), TimeValue(At), DateSerial(25, 13, 0)",
       "46000.5|46000.0|0.5|46022.0|0.25|46022.0"},
      {"Format(At, 'dd/mm/yyyy hh:nn'), Format(7, '000'), Format(-1.5, '0.00#'), Format(Null, '0')",
       "31/12/2025 06:00|007|-1.50|"},
      {"Nz(Note), Nz(Null, 3), IsNull(Note), Chr(128), Asc('€')", "a|3|0|€|128"},
      {"CInt(40000)", "!6"},
      {"Left(Name, -1)", "!5"},
      {"(select count(*) from U where U.Tid = T.Id), exists (select * from V)", "2|-1"},
  });
}

TEST_F(Language, JoinsGroupsAndOrders) {
  expect({
      {"select T.Id, Kind from T left join U on T.Id = U.Tid order by 1 desc, 2", "3|-;2|-;1|a;1|B"},
      {"select U.Id, T.Id from T right join U on T.Id = U.Tid order by U.Id", "1|1;2|1;3|-"},
      {"select U.Id, V.Id from T inner join (U left join V on V.Uid = U.Id) on T.Id = U.Tid", "1|-;2|1"},
      {"select T.Id, V.Id from T left join (U inner join V on V.Uid = U.Id) on T.Id = U.Tid order by T.Id",
       "1|1;2|-;3|-"},
      {"select T.Id, V.Id from (T inner join U on T.Id = U.Tid) left join V on V.Uid = U.Id and V.Id = 1",
       "1|-;1|1"},
      {"select count(*) from V, T left join U on T.Id = U.Tid where Kind = 'b' or Kind is null", "3"},
      {"select Name, count(*), sum(Small), max(Flag) from T group by Name having count(*) > 1",
       "anna|2|-5|0"},
      {"select Left(Name, 1) as L, count(*) from T group by Left(Name, 1) order by Left(Name, 1) desc",
       "É|1;a|2"},
      {"select avg(Small), min(Name), count(Note), sum(Flag) from T", "0.0|anna|1|-1"},
      {"select Id from T group by Name", "!3122"},
      {"select Name, count(*) from T", "!3122"},
      {"select Left(Name, 2) from T group by Left(Name, 1)", "!3122"},
      {"select Left(Name, 2) & 'n', count(*) from T group by Left(Name, 1), Left(Name, 2) having count(*) > "
       "1",
       "ann|2"},
      {"parameters p Integer, q Integer; select Left(Name, p) from T group by Left(Name, q)", "!3122"},
      {"select distinct Name from T order by Name", "anna;Éric"},
      {"select distinctrow T.Name from T inner join U on T.Id = U.Tid", "Éric"},
      {"select top 2 Id from T order by Id desc;", "3;2"},
      {"select Id from T order by 2", "!3075"},
      {"select count(*) from T group by True order by False", "3"},
      {"select Id from T where Id in (select sum(U.Id * T.Small) from U)", ""},
      {"select Id from T where Id in (select max(Small) from U)", "!3075"},
      {"select Id from T where Id in (select Tid from U) and Id not in (select Uid from V)", "1"},
      {"select Id from T as a where exists (select * from T where T.Name = a.Name and T.Id <> a.Id)", "2;3"},
      {"select Name from T where Small = (select max(Small) from T)", "Éric"},
      {"select Id, (select top 1 Kind from U where U.Tid = T.Id order by 1 desc) from T where Id = 1", "1|B"},
      // A query within another is ordered and grouped only by its own fields.
      {"select Id from T where 1 = (select Id from U order by Name)", "!3061"},
      {"select Id from T where 1 = (select T.Id + U.Id from U order by 1)", "!3061"},
      {"select Id from T where exists (select count(*) from U group by T.Name)", "!3061"},
  });
  EXPECT_EQ(db_.columns("select *, Id + 1, Name as N, T.At, 1 from T where Id > 0 order by Id"),
            "Id,Name,Code,Small,Tiny,Flag,Real,T.At,Note,Expr1009,N,T.At,Expr1012/T");
  EXPECT_EQ(db_.columns("select x.*, y.Id from U x, U as y"), "x.Id,Tid,Kind,y.Id/");
  EXPECT_EQ(db_.columns("select distinct Id from U"), "Id/");
  EXPECT_EQ(db_.columns("select top 3 u!Kind from U"), "Kind/U");
}

TEST_F(Language, StoresWhatTheFieldTakes) {
  expect({
      {"update T set Code = 12, Small = '-3', Flag = 'true', At = '5/6/2025 7:08', Real = 3 where Id = 1",
       "1"},
      {"select Code, Small, Flag, At, Real from T where Id = 1", "12|-3|-1|45813.2972222222|3.0"},
      {"update T set Small = Small + 1, Code = Flag, Note = At & '', Flag = Small < 0, T.Tiny = Real where "
       "Id = 1",
       "1"},
      {"select Small, Code, Note, Flag, Tiny from T where Id = 1", "-2|True|05/06/2025 07:08:00|-1|3"},
  });
  expect({
      {"update T set Small = Small + 40000 where Id = 1", "!6"},
      {"update T set Tiny = -1", "!6"},
      {"update T set Tiny = True", "!6"},
      {"update T set Name = Name & 'too long' where Id = 1", "!3163"},
      {"update T set Name = 'ten letters and more'", "!3163"},
      {"update T set At = 'tomorrow'", "!3421"},
      {"insert into U (Id, Kind) select Id + 10, Left(Name, 3) from T where Id <= 2", "2"},
      {"select Id, Tid, Kind from U where Id > 10 order by Id", "11|-|Éri;12|-|ann"},
      {"insert into U (Id, Kind) select Id, Name from T", "!3163"},
      {"delete U.* from U where Id > 10", "2"},
      {"delete from V", "1"},
  });
}

TEST_F(Language, RefusesWhatItCannotRead) {
  expect({
      {"select Id from T; delete from T", "!3075"},
      {"select Id from T;;", "!3075"},
      {"select Id from T where Name = 'x'; delete * from T; --'", "!3075"},
      {"select Id from T where Name = 'O'Brien'", "!3075"},
      {"select Id from T where Name = 'open", "!3075"},
      {"select Id from T where Name = 'x' or 'a''; delete * from T --' = 'a'", ""},
      {"select Id from T where Id = 1 -- 2", "3"},
      {"select Id from T where At = #2/30/2025#", "!3075"},
      {"select Id from T where Id = @1", "!3075"},
      {"select Id from T where Id = ?1", "!3075"},
      {"select Id, from T", "!3075"},
      {"select Id Ident from T", "!3075"},
      {"select top 5 percent Id from T", "!3075"},
      {"select Id from T union select Id from U", "!3075"},
      {"select Id from T where count(*) > 1", "!3075"},
      {"select 1 from T having count(*) > 1", "!3075"},
      {"select Id from T a, U a", "!3075"},
      {"drop table T", "!3075"},
      {"select Id from [Nowhere]", "!3078"},
      {"select Missing from T", "!3061"},
      {"select T.Missing from T", "!3061"},
      {"select a.Id from T", "!3061"},
      {"update T set Missing = 1", "!3061"},
      {"insert into T (Id) values (Id)", "!3061"},
      {"insert into T (Missing) values (1)", "!3127"},
      {"insert into T (Id, Id) values (1, 2)", "!3063"},
      {"insert into T (Id, Name) values (1)", "!3346"},
      {"select Id from T, U", "!3079"},
      {"select Soundex(Name) from T", "!3085"},
      {"select Len(Name, 1) from T", "!3085"},
      {"select max(Id, 1) from T", "!3085"},
      {"select first(Name) from T", "!3085"},
      {"select count(*) from T", "3"},
  });
  // Depth is limited, by SQLite or before it. Length is not.
  const auto repeated = [](const char* text, int times) {
    std::string out;
    while (times-- > 0) out += text;
    return out;
  };
  const std::string from = "select Id from T where Id = 1 and ";
  EXPECT_EQ(db_.attempt(from + repeated("(", 90) + "Id = 1" + repeated(")", 90)), "1");
  EXPECT_EQ(db_.attempt(from + repeated("(", 9000)), "!3075");
  EXPECT_EQ(db_.attempt(from + repeated("not ", 9000) + "Flag"), "!3075");
  for (const auto& [open, middle] : {std::pair{"1 - (0 * ", "1"},
                                     {"iif(Flag, 1, ", "1"},
                                     {"InStr(1, Name, ", "'x'"},
                                     {"0 in (2, ", "1"},
                                     {"-(1 = ", "1"},
                                     {"('x' like ", "1"},
                                     {"1 & (0 & ", "1"},
                                     {"1 & (7 - not 6 & ", "1"},
                                     {"1 mod (", "2"},
                                     {"0 between 1 and (", "1"},
                                     {"0 in (select Id from T where ", "Flag"}}) {
    for (int depth = 1; depth < 40; ++depth) {
      const std::string result = db_.attempt(from + repeated(open, depth) + middle + repeated(")", depth));
      EXPECT_TRUE(result == "!3075" ? depth > 4 : result[0] != '!') << open << depth << result;
    }
  }
  EXPECT_EQ(db_.attempt(from + "(Id = 0" + repeated(" or Id = 1", 800) + ")"), "1");
  EXPECT_EQ(db_.attempt(from + "'' <> ''" + repeated(" & 'x'", 800)), "1");
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
