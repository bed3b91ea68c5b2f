#include "messages/strings.h"

#include "comm/station.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

using Boxes = std::vector<std::string>;

class StringsTest : public test::InstallationTest {
 protected:
  Strings& strings() { return glob->Strings(); }
};

TEST_F(StringsTest, WithoutAStoreTheMnemonicIsNamed) {
  EXPECT_FALSE(strings().isOpen());
  EXPECT_EQ(strings().read("msgCantOpen"), "Mnemonic msgCantOpen");
  strings().display("msgCantOpen", "X.y");
  EXPECT_EQ(boxes(), Boxes{"Mnemonic msgCantOpen|(X.y)"});
  write("I18N.MDB", "in the way");
  EXPECT_EQ(strings().createDB(), err::typeMismatch);  // the failure of making the box about it
  EXPECT_TRUE(boxes().empty());
  EXPECT_EQ(textOf("I18N.MDB"), "in the way");
}

TEST_F(StringsTest, DefaultsTranslationsAndFallbacks) {
  ASSERT_EQ(strings().createDB(), 0);
  glob->insertStrings();
  EXPECT_EQ(strings().read("msgCantFindFile"), "Can't find file");
  EXPECT_EQ(strings().read("MSGCANTFINDFILE"), "Can't find file");
  EXPECT_EQ(strings().read("msgCantFind"), "");
  EXPECT_EQ(strings().read("it's"), "Mnemonic it's");
  EXPECT_EQ(strings().read("msgNoActiveStation"), "Warning: No active station found");
  const auto store = engine->databases().front();
  EXPECT_EQ(store->openRecordset("Strings")->recordCount(), 60U);
  const auto row = store->openRecordset("select * from Strings where Mnemonic = 'nameStationLocal'");
  EXPECT_EQ(row->get("Width"), Value(std::int16_t{2000}));
  EXPECT_EQ(row->get("FontSize"), Value(std::int16_t{8}));
  EXPECT_EQ(row->get("Type"), Value("Name"));
  EXPECT_EQ(row->get("Context"), Value("KORVA Table Stations"));

  store->execute("update Strings set TextLocal = 'Lokal' where Mnemonic = 'nameStationLocal'");
  EXPECT_EQ(strings().insert("nameStationLocal", "Here", 1, "c", "Name", 7.4F, true), 0);
  EXPECT_EQ(strings().read("nameStationLocal"), "Lokal");
  store->execute("update Strings set TextLocal = '' where Mnemonic = 'nameStationLocal'");
  EXPECT_EQ(strings().read("nameStationLocal"), "Here");
  const auto changed = store->openRecordset("select * from Strings where Mnemonic = 'nameStationLocal'");
  EXPECT_EQ(changed->get("FontBold"), Value(std::int16_t{-1}));
  EXPECT_EQ(changed->get("FontSize"), Value(std::int16_t{7}));
  EXPECT_EQ(strings().insert(std::string(51, 'm'), "x", 0, "", "Message"), err::dbTextTooLong);
}

TEST_F(StringsTest, ATextThatCannotBeWrittenKeepsNoOtherOut) {
  glob->insertStrings();
  EXPECT_EQ(boxes().size(), 1U);  // one box: there is no store
  ASSERT_EQ(strings().createDB(), 0);
  const auto store = engine->databases().front();
  TableDef narrow = store->tableDef("Strings");
  narrow.fields[3].size = 100;
  store->deleteTable("Strings");
  store->createTable(narrow);
  glob->insertStrings();
  const std::size_t refused = boxes().size();
  EXPECT_EQ(refused, 2U);
  EXPECT_EQ(store->openRecordset("Strings")->recordCount(), 60 - refused);
}

TEST_F(StringsTest, ABoxIsMadeOfWhatThereIs) {
  createInstallation();
  db().beginReading();
  EXPECT_EQ(query("select Name from Stations"), "Local");
  strings().display("", "X.y");  // while the box is shown nobody waits for the file
  strings().display("msgCantOpen", "X.y", Value(std::int16_t{7}), 48);
  EXPECT_EQ(prompts.boxes[0].style, 16);
  EXPECT_EQ(prompts.boxes[1].style, 48);
  strings().display("msgNoSuch", "", Value("text"));
  library->error() = {6, "Overflow"};
  strings().display("msgUnexpecErr", "X.y");
  library->error().clear();
  strings().display("msgUnexpecErr", "X.y", ErrorInfo{5, "Bad"});
  EXPECT_EQ(library->error().number, 5);
  library->error().clear();
  driver.systemError = 2;
  strings().display("msgComErr");
  EXPECT_EQ(boxes(), (Boxes{"(X.y)", "Can't open file 7|(X.y)", " text",
                            "Unexpected error|Error 6: Overflow|(X.y)", "Unexpected error|Error 5: Bad|(X.y)",
                            "Communication Error|DLL Error 2: No such file or directory"}));
}

TEST_F(StringsTest, DatabaseErrorsHaveTheirOwnWording) {
  createInstallation();
  const auto failing = [&](const std::string& sql) {
    library->attempt({"msgUnexpecErr", "X.y"}, [&] { db().execute(sql); });
    const auto shown = boxes();
    return shown.empty() ? "nothing shown" : shown.front();
  };
  EXPECT_EQ(failing("insert into Stations (Id, Name) values (1, 'Other')"),
            "Unexpected error|DB Error 3022: Some values in this item are already in use|(X.y)");
  EXPECT_EQ(failing("insert into Stations (Id) values (2)"),
            "Unexpected error|DB Error 3058: A mandatory field was not filled|(X.y)");
  EXPECT_TRUE(
      failing("delete from DailyPrograms where Id = 1")
          .starts_with("Unexpected error|DB Error 3200: You can't delete this item because it is used by "
                       "another table|"));
  EXPECT_EQ(failing("insert into Stations (Id, Name) values ('x', 'n')"),
            "Unexpected error|DB Error 3421: Data type conversion error|(X.y)");
}

}  // namespace
}  // namespace voxa
