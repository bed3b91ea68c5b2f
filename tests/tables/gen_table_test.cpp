#include "tables/gen_table.h"

#include "support/installation_test.h"
#include "tables/table.h"

namespace voxa {
namespace {

/// A table with unusual columns.
class OddTable : public Table {
 public:
  explicit OddTable(Library& library, bool broken = false) : Table(library, "Odd"), broken_(broken) {}
  void createFields(TableDef& td) override {
    addField(td, "Id", DataType::Integer);
    gen_.appendField("Text", DataType::Text, 5, {});
    addField(td, "Flag", DataType::Boolean);
    addField(td, "PartFLAGD", DataType::Boolean);
    gen_.appendField("FlagD", DataType::Boolean, 0, {});
    if (broken_) addField(td, "id", DataType::Integer);
  }
  void createIndexes(TableDef& /*td*/) override {}
  GenTable& gen() { return gen_; }

 private:
  bool broken_;
};

class GenTableTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    table.create();
  }
  void ids(std::initializer_list<int> values) {
    db().execute("delete from Odd");
    for (const int id : values) db().execute("insert into Odd (Id) values (" + std::to_string(id) + ")");
  }
  OddTable table{*library};
};

TEST_F(GenTableTest, FirstFreeValue) {
  const struct {
    std::initializer_list<int> taken;
    int free;
  } cases[] = {{{}, 1}, {{1, 2, 3}, 4}, {{2, 3}, 1}, {{1, 3, 4}, 2}, {{0, 1, 1, 2}, 3}, {{-2, 1}, -1}};
  for (const auto& c : cases) {
    ids(c.taken);
    EXPECT_EQ(table.gen().getFreeValue("Id", ""), c.free);
  }
  ids({1, 2, 5});
  EXPECT_EQ(table.gen().getFreeValue("Id", "Id > 3"), 1);
  db().execute("insert into Odd (Text) values ('x')");
  (void)table.gen().getFreeValue("Id", "");
  const auto shown = boxes();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_TRUE(shown[0].ends_with("|((getFreeValue) Odd)")) << shown[0];
  ids({1});
  plain("KRV.mdb", "update Odd set Id = 'x'");
  (void)table.gen().getFreeValue("Id", "");
  EXPECT_EQ(boxes().size(), 1U);
  EXPECT_NE(engine->errors().at(0).description.find("the column Id of the table Odd"), std::string::npos);

  engine->begin();
  ids({});
  for (int id = 1; id <= 32767; ++id)
    db().execute("insert into Odd (Id) values (" + std::to_string(id) + ")");
  engine->commit();
  EXPECT_EQ(table.gen().getFreeValue("Id", ""), -1);  // and no number: none is free
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(GenTableTest, FlagsAreTheColumnsWhoseNamesEndInFlagD) {
  ids({1, 2});
  EXPECT_EQ(table.setTableFlagsD(true), 0);
  EXPECT_EQ(query("select count(*) from Odd where PartFlagD = true and FlagD = true and Flag = false"), "2");
  ASSERT_FALSE(table.gen().openWhere("Id = 2"));
  EXPECT_TRUE(table.gen().getFlagDSetFound());
  EXPECT_EQ(table.gen().setFlagsD(false), 0);
  EXPECT_FALSE(table.gen().getFlagDSetFound());
  EXPECT_EQ(query("select count(*) from Odd where FlagD = true"), "1");
  EXPECT_TRUE(table.gen().openWhere("Id = 3"));
  EXPECT_THROW(table.gen().appendField("Late", DataType::Long, 0, {}), Error);  // no table is being built
}

TEST_F(GenTableTest, RowsBeforeOneThatFailsKeepWhatTheyWereGiven) {
  ids({1, 2, 3});
  plain("KRV.mdb", "update Odd set FlagD = 'x' where Id = 2");
  EXPECT_EQ(table.setTableFlagsD(true), err::dbConversion);
  const auto shown = boxes();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_TRUE(shown[0].ends_with("|(Odd.setFlagsD)")) << shown[0];
  EXPECT_EQ(query("select count(*) from Odd where PartFlagD = true"), "1");
  EXPECT_EQ(query("select Id from Odd where PartFlagD = true"), "1");
}

TEST_F(GenTableTest, ARowChangedWhileItWasSentKeepsItsFlags) {
  ids({1, 2});
  ASSERT_EQ(table.setTableFlagsD(true), 0);
  ASSERT_FALSE(table.gen().openWhere("Id = 1"));
  const auto sent = table.gen().currentValues();
  db().execute("update Odd set Text = 'new' where Id = 1");
  EXPECT_EQ(table.gen().clearFlagsOfSent("Id = 1", sent), 0);
  EXPECT_EQ(query("select count(*) from Odd where FlagD = true"), "2");
  ASSERT_FALSE(table.gen().openWhere("Id = 1"));
  EXPECT_EQ(table.gen().clearFlagsOfSent("Id = 1", table.gen().currentValues()), 0);
  EXPECT_EQ(query("select count(*) from Odd where FlagD = true"), "1");
}

TEST_F(GenTableTest, NullsAreFilledByType) {
  ids({7});
  ASSERT_EQ(table.gen().fillTableNulls(), 0);
  EXPECT_EQ(query("select Text from Odd"), "");
  db().execute("insert into Odd (Text) values ('x')");
  ASSERT_EQ(table.gen().fillTableNulls(), 0);
  EXPECT_EQ(query("select Id from Odd where Text = 'x'"), "0");
  ids({1, 2, 3});
  plain("KRV.mdb", "update Odd set FlagD = 'x' where Id = 2");
  EXPECT_EQ(table.gen().fillTableNulls(), err::dbConversion);
  EXPECT_EQ(query("select Text from Odd where Id = 1") + query("select Text from Odd where Id = 3"), "Null")
      << "the row before the one that fails is filled, the one behind it is not";
}

TEST_F(GenTableTest, GetIdIsSilent) {
  ids({4});
  EXPECT_EQ(table.gen().getId("Id > 3"), 4);
  EXPECT_EQ(table.gen().getId("Id = 3"), -1);
  EXPECT_EQ(table.gen().getId("Text = 'O'Hara'"), -1);
  EXPECT_TRUE(boxes().empty());
  EXPECT_EQ(library->error().number, 0);
}

TEST_F(GenTableTest, ABrokenDefinitionIsShownAndBuildsNothing) {
  db().deleteTable("Odd");
  OddTable broken(*library, true);
  EXPECT_EQ(broken.create(), 0);
  const auto shown = boxes();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_TRUE(shown[0].starts_with("Can't create table|")) << shown[0];
  EXPECT_TRUE(shown[0].ends_with("|(Odd.create)")) << shown[0];
  EXPECT_THROW((void)db().tableDef("Odd"), Error);
}

}  // namespace
}  // namespace voxa
