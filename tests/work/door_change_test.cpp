#include <filesystem>

#include "comm/com.h"
#include "support/installation_test.h"
#include "work/alarms.h"
#include "work/cards.h"
#include "work/carry_out.h"
#include "work/groups.h"
#include "work/lifts.h"
#include "work/readers.h"
#include "work/refusal.h"
#include "work/stations.h"

namespace voxa {
namespace {

// Staff opens Front and Back of the local line and Garage of another one, and uses a lift output beside
// Front. The controllers hold what the rows say.
class DoorChangeTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    voxa::addStation(*library, {.name = "Annex"});
    for (const auto& [name, station, address] :
         {std::tuple("Front", "Local", "1"), {"Back", "Local", "2"}, {"Garage", "Annex", "4"}}) {
      voxa::addReader(*library, {name, station, address, "1"});
    }
    addGroup(*library, "Staff");
    for (const char* door : {"Front", "Back", "Garage"}) grantDoor(*library, "Staff", door, "0");
    addLift(*library, {"Top", "Local", "1", "3"});
    grantLift(*library, "Staff", "Top");
    addCard(*library, {"Ann", "12", "4711", "Staff"});
    testLines(true);
    carry();
  }
  void TearDown() override { EXPECT_TRUE(boxes().empty()) << "work shows nothing"; }

  void testLines(bool answer) {
    const std::string all(16, answer ? '1' : '2');
    driver.resultFiles = {{1, all}, {2, all}};
    (void)library->Com().TestCom();
    driver.calls.clear();
  }
  void carry() {
    (void)carryOut(*library, {});
    EXPECT_EQ(planned(), "");
    driver.calls.clear();
  }
  /// Station, address, number and action of what the controllers miss.
  std::string planned() {
    std::string all;
    for (const PlannedController& controller : planAll(*library, {}).controllers) {
      for (const PlanItem& item : controller.plan.items) {
        all += std::to_string(controller.plan.place.station) + "," +
               std::to_string(controller.plan.place.address) + ":" + std::to_string(item.number) +
               (item.action == PlanItem::Action::erase ? " erase;" : ";");
      }
    }
    return all;
  }
  std::string rows() {
    std::string all;
    for (const char* sql : {"select StationId & ControllerAddress & Position from Readers",
                            "select StationId & ControllerAddress & Num from Alarms",
                            "select LiftNum from LiftGroup", "select ReaderId from AccGroupReaders"}) {
      for (const auto found = db().openRecordset(sql); !found->eof(); found->moveNext())
        all += found->get(0U).toText() + " ";
    }
    return all;
  }
  /// What a refusal of the work says; "" when it is done.
  static std::string refusalOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const Refusal& refusal) {
      return refusal.what();
    }
    return "";
  }
};

TEST_F(DoorChangeTest, WhatCardsLoseIsErasedBeforeTheRowsChange) {
  const std::pair<bool, std::function<void()>> works[] = {
      {true, [this] { (void)changeReader(*library, "Front", {.address = "3"}); }},
      {false, [this] { (void)changeReader(*library, "Front", {.position = "2"}); }},
      {false, [this] { changeLift(*library, "Top", {.address = "3"}); }},
      {true, [this] { changeLift(*library, "Top", {.number = "4"}); }},
      {true, [this] { deleteLift(*library, "Top", "Roof"); }},
      {true, [this] { EXPECT_TRUE(deleteReader(*library, "Back", {.moveTo = "Front"}).grants.empty()); }},
      {true, [this] { deleteStation(*library, "Annex", "Local"); }},
      {true, [this] { deleteReader(*library, "Garage", {.revoke = true}); }}};
  addLift(*library, {"Roof", "Local", "3", "9"});
  for (const auto& [loses, work] : works) {
    const std::string before = rows();
    SCOPED_TRACE(before);
    if (loses) {
      testLines(false);
      EXPECT_NE(refusalOf(work), "");
      EXPECT_EQ(driver.sent(), "");
      EXPECT_EQ(rows(), before);
      testLines(true);
    }
    EXPECT_EQ(refusalOf(work), "");
    EXPECT_EQ(driver.sent(), loses ? "09001200000000\r\n\r\n" : "");
    EXPECT_NE(rows(), before);
    carry();
  }
  EXPECT_EQ(rows(), "132 139 2 1 1 ");
  EXPECT_EQ(query("select count(*) from Stations"), "1");
}

TEST_F(DoorChangeTest, WhatIsGoneNeedNotAnswerAndIsNotForgotten) {
  testLines(false);
  voxa::addReader(*library, {"Typo", "Local", "9", "1"});
  grantDoor(*library, "Staff", "Typo", "0");
  EXPECT_EQ(refusalOf([this] { (void)changeReader(*library, "Typo", {.address = "2", .position = "2"}); }),
            "")
      << "there never was a controller";
  const DeletedReader back = deleteReader(*library, "Garage", {.revoke = true, .gone = true});
  EXPECT_EQ(back.doors.keptFor, std::vector<std::string>{"Annex Controller 4  -  Garage"});
  EXPECT_NE(planned().find("2,4:12 erase;"), std::string::npos);
  // It may have got another address before the rows say so.
  (void)changeReader(*library, "Front", {.address = "5", .gone = true});
  db().execute("update Cardholders set Deleted = True");
  EXPECT_NE(planned().find("1,1:12 erase;1,2:12 erase;1,5:12 erase;"), std::string::npos) << planned();
}

TEST_F(DoorChangeTest, WhatUsesAThingIsNamed) {
  EXPECT_NE(refusalOf([this] { deleteReader(*library, "Front"); }).find("Staff (Always)"), std::string::npos);
  EXPECT_NE(refusalOf([this] { deleteLift(*library, "Top"); }).find("Staff"), std::string::npos);
  EXPECT_NE(refusalOf([this] { deleteStation(*library, "Annex"); }).find("reader Garage"), std::string::npos);
  voxa::addReader(*library, {"Yard", "Local", "4", "1"});
  EXPECT_NE(
      refusalOf([this] { deleteStation(*library, "Annex", "Local"); }).find("Garage: at address 4 Yard"),
      std::string::npos);
  voxa::addStation(*library, {.name = "Depot", .phone = "555"});
  db().execute("update Stations set Active = True where Name = 'Depot'");
  EXPECT_NE(refusalOf([this] { deleteStation(*library, "Depot"); }).find("connected"), std::string::npos);
  db().execute("update Stations set Active = False where Name = 'Depot'");
  EXPECT_TRUE(std::filesystem::exists("S003.ini"));
  deleteStation(*library, "3");
  EXPECT_FALSE(std::filesystem::exists("S003.ini"));
}

TEST_F(DoorChangeTest, WhatIsKeptForOthersIsStoredAndMarked) {
  voxa::addReader(*library, {"Side", "Local", "1", "2"});
  const ChangedReader changed =
      changeReader(*library, "front", {.type = "VRMD1", .settings = {.openDelay = "6", .pin = "0042"}});
  EXPECT_EQ(changed.typeToo, std::vector<std::string>{"Side"});
  EXPECT_EQ(query("select DoorOpenDelay & PINCode & DoorOpenDelayFlagD & ControllerType from Readers"),
            "642-1VRMD1");
  EXPECT_NE(refusalOf([this] { (void)changeReader(*library, "Front", {.settings = {.counting = "2"}}); }),
            "");
  EXPECT_NE(refusalOf([this] { addAlarm(*library, {"Siren", "m", "Local", "1", "3"}); }), "");
  EXPECT_EQ(addAlarm(*library, {"Siren", "s", "Local", "1", "3"}), 2);
  changeAlarm(*library, "2", {.name = "Horn"});
  EXPECT_NE(refusalOf([this] { deleteAlarm(*library, "Top"); }), "") << "a lift output";
  deleteAlarm(*library, "horn");
  EXPECT_TRUE(listAlarms(*library).empty());
  EXPECT_EQ(listLifts(*library).size(), 1U);
}

}  // namespace
}  // namespace voxa
