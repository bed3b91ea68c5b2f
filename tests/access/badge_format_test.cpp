#include "access/badge_format.h"

#include "messages/strings.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

class BadgeFormatTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    library->Strings().insert("nameBadgeFormatDefault", "Default", 0, "Test", "Name");
    library->Strings().insert("msgCantFindBadgeFormat", "No format", 0, "Test", "Message");
    formats().CreateTable();
    db().execute(
        "insert into BadgeFormat (Id, Name, SystemCard, Techno, Pos_Card, Pos_Site, Size_Site, Val_Site, "
        "BadgeFormatFlagD) values (5, 'Site', False, 5, 6, 2, 4, '1A2F', True)");
  }
  std::int16_t download(std::int16_t id, bool vrmd1, std::int16_t params = DLDefault) {
    std::int16_t reader = 3;
    bool tested = true;
    driver.calls.clear();
    return formats().download(id, reader, vrmd1, CTActiveStations, "", params, &tested);
  }
  BadgeFormat& formats() { return glob->QDB().BadgeFormat(); }
};

TEST_F(BadgeFormatTest, TheTableKeepsItsLimitsAndTheDefaultFormat) {
  EXPECT_EQ(formats().getFreeId(), 1);
  for (const char* wrong : {"Pos_Card = 33", "Size_Card = 65", "Pos_Site = 100", "Size_Site = 65"}) {
    EXPECT_THROW(db().execute("update BadgeFormat set " + std::string(wrong)), Error) << wrong;
  }
  db().execute("insert into BadgeFormat (Name) values ('Numbered by the engine')");
  EXPECT_EQ(query("select Id from BadgeFormat where Techno = 0 and Pos_Site = 0 and Val_Site is null"), "6");
  formats().CreateTable();  // once more: the table and its default row are there
  EXPECT_EQ(boxes().size(), 2U);
  EXPECT_EQ(query("select count(*) from BadgeFormat"), "3");
}

TEST_F(BadgeFormatTest, TheLineOfAFormat) {
  for (const bool vrmd1 : {false, true}) {
    EXPECT_EQ(download(5, vrmd1), 0);
    EXPECT_EQ(driver.sent(), vrmd1 ? "043108020406081:2?0000\r\n\r\n" : "04020406081:2?0000\r\n\r\n");
  }
  EXPECT_EQ(download(0, true), 0);
  EXPECT_EQ(driver.sent(), "") << "not marked";
  EXPECT_EQ(download(0, true, DLFull), 0);
  EXPECT_EQ(driver.sent(), "0438000000000800000000\r\n\r\n");
  EXPECT_EQ(query("select count(*) from BadgeFormat where BadgeFormatFlagD = True"), "2")
      << "it stays marked";
  EXPECT_TRUE(boxes().empty());
}

TEST_F(BadgeFormatTest, AFailureIsShownUnlessToldOtherwise) {
  answerAll(4);
  EXPECT_EQ(download(5, false, DLNoMessage), 4);
  EXPECT_TRUE(boxes().empty());
  EXPECT_EQ(download(5, false), 4);
  EXPECT_TRUE(boxes().at(0).ends_with("|(BadgeFormat.download)"));
  db().execute("update BadgeFormat set Val_Site = Null where Id = 5");
  EXPECT_EQ(download(5, false), err::invalidNull);
  EXPECT_EQ(driver.sent(), "");
  boxes();
  EXPECT_EQ(download(9, false), 0);
  EXPECT_EQ(boxes(), std::vector<std::string>{"No format 9|(BadgeFormat.download)"});
}

}  // namespace
}  // namespace voxa
