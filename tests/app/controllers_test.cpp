#include "app/controllers.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>

#include "comm/com.h"
#include "platform/driver/library_driver.h"
#include "site/site.h"
#include "support/installation_test.h"
#include "work/groups.h"

namespace voxa {
namespace {

// Group Left (1) opens Front (controller 1) always, Right (2) opens Back (controller 2); card 7 is in Left.
// Real driver library, simulated controllers.
class ControllersTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    unsetenv("TLXP_SITE");
    createInstallation();
    glob->insertStrings();
    glob.reset();
    library = std::make_unique<Library>(Library::Seams{*engine, real, prompts, clock});
    library->Com().AppDB = folder + "\\KRV.mdb";
    library->Com().Chemin = folder;
    ASSERT_EQ(library->QDB().openCommonDB(), 0);
    for (const auto& [id, reader, group] : {std::tuple(1, "Front", "Left"), {2, "Back", "Right"}}) {
      site.addController({.station = 1, .address = id});
      addReader(id, reader, 1, id, 1);
      addGroup(*library, group);
      (void)grantDoor(*library, group, reader, "0");
    }
    db().execute(
        "insert into Cardholders (CardNum, Name, CardCode, AccessGroupId, Validated) values (7, 'Ann', "
        "'00000047', 1, True)");
    controllers = std::make_unique<Controllers>(*library);
    EXPECT_EQ(controllers->download(), 0);
    db().execute("update Cardholders set AccessGroupId = 2, AccessGroupIdFlagD = True");
  }
  // What each controller does with card 7.
  std::string doors() {
    std::string all;
    for (const int address : {1, 2}) {
      const auto cards = site.snapshot(1, address).cards;
      const bool opens = !cards.empty() && cards[0].door1 && cards[0].weekly == 0;
      all += std::to_string(address) + (cards.empty() ? ": no card " : opens ? ": opens " : ": shut ");
    }
    return all;
  }
  std::string items() {
    std::string all;
    for (std::int32_t i = 0;; ++i) {
      const Controllers::Item item = controllers->item(i);
      if (item.thing.empty()) break;
      all += item.controller + ": " + item.action + " " + item.thing + ", " + item.reason + "|";
    }
    return all;
  }

  LibraryDriver real;
  site::Site site{"site"};
  std::unique_ptr<Controllers> controllers;
};

// As old clients do it: no controller is told before the row changes, and no mark says where the card was.
TEST_F(ControllersTest, AGroupMoveByItsMarkAloneEndsRightAtEveryController) {
  EXPECT_EQ(controllers->plan(), 2);
  EXPECT_EQ(items(),
            "Local Controller 1  -  Front: erase card 7, left the group|"
            "Local Controller 2  -  Back: send card 7, not sent yet|");
  EXPECT_EQ(controllers->plan("", "Back"), 1);
  EXPECT_FALSE(controllers->mayOpen("7", "Front"));
  const std::string opens = "Ann (card 7) opens Back: always; known at Local Controller 2: ";
  EXPECT_EQ(controllers->whatOpens("Ann"),
            "Ann (card 7) does not open Front: its access group does not grant the door; known at Local "
            "Controller 1: not yet (that it opens nothing); it opens the door\r\n" +
                opens + "not yet (the card); it keeps the door shut");
  EXPECT_EQ(doors(), "1: opens 2: no card ");

  site::Faults silent;
  silent.silent = true;
  site.setFaults(1, 2, silent);
  EXPECT_EQ(controllers->download(), Controllers::somethingMissing);
  EXPECT_EQ(items(), "Local Controller 2  -  Back: send card 7, not sent yet; does not answer|");
  EXPECT_EQ(doors(), "1: no card 2: no card ");
  site.clearFaults(1, 2);
  EXPECT_EQ(controllers->downloadCard(7), 0);
  EXPECT_EQ(items(), "");
  EXPECT_EQ(doors(), "1: no card 2: opens ");
  EXPECT_EQ(query("select count(*) from Cardholders where AccessGroupIdFlagD"), "0");
  EXPECT_EQ(controllers->whoOpens("Back"), opens + "yes");

  site.replace(1, 2);
  EXPECT_EQ(controllers->replaced("Local", 2), 0);
  EXPECT_EQ(controllers->download("Local"), 0);
  EXPECT_EQ(doors(), "1: no card 2: opens ");
  EXPECT_EQ(boxes(), std::vector<std::string>{});
}

TEST_F(ControllersTest, WhatFailsIsToldAndChangesNothing) {
  EXPECT_EQ(controllers->plan("Nowhere"), -1);
  EXPECT_EQ(controllers->download("Local", "Front"), 5);
  EXPECT_EQ(controllers->downloadCard(70'000), 5);
  EXPECT_EQ(controllers->replaced("Local", 9), 5);
  EXPECT_FALSE(controllers->mayOpen("7", "Back", DateTime{1e300}));
  EXPECT_EQ(controllers->plan(), 2);
  library->lineLock().patience = {};
  const int another = ::open("voxa.lck", O_RDWR | O_CREAT, 0600);  // as another process has it
  ASSERT_EQ(::flock(another, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(controllers->download(), 70);
  EXPECT_EQ(items(), "");
  EXPECT_EQ(controllers->replaced("Local", 2), 70);
  ::close(another);
  EXPECT_EQ(doors(), "1: opens 2: no card ");
  const std::vector<std::string> told = {
      "Can't find station Nowhere|(Controllers.plan)",
      "Error 5: give the name of a station or of a reader",
      "Error 5: the card number is a number from 1 to 9999, not 70000|(Controllers.downloadCard)",
      "Error 5: Local has no controller 9",
      "Unexpected error|Error 6: Overflow: the date",
      "Can't download parameters to controller. Try later|Error 70: ",
      "Unexpected error|Error 70: "};
  const std::vector<std::string> shown = boxes();
  ASSERT_EQ(shown.size(), told.size());
  for (std::size_t i = 0; i < told.size(); ++i) EXPECT_TRUE(shown[i].starts_with(told[i])) << shown[i];
}

}  // namespace
}  // namespace voxa
