#include "app/import_installation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "engines/sqlite/engine.h"
#include "platform/files.h"
#include "platform/observer.h"
#include "platform/temporary_folder.h"
#include "platform/ui/scripted_prompts.h"
#include "work/carry_out.h"
#include "work/refusal.h"

namespace voxa {
namespace {

class Silent : public Observer {
 public:
  void progress(const char* /*what*/, std::size_t /*number*/, std::size_t /*total*/) override {}
};

class Imports : public testing::Test {
 protected:
  void SetUp() override {
    OpenInstallation old(prompts);
    old.create({.folder = folder / "old"});
    old.leave();
    const auto main = engine->open(folder / "old/KRV.mdb");
    for (const char* sql :
         {"delete from Stations", "insert into Stations (Id, Name, ComPort) values (3, 'Nord', 7)",
          "insert into Cardholders (Id, CardNum, Name, CardCode, AccessGroupId, PINCodeFlagD) values "
          "(5, 77, 'Ada', '00000012', 0, True)",
          "insert into Readers (Id, Name, StationId, ControllerAddress, Position) values (1, 'Door', 3, 1, "
          "1)",
          "create table Cars (Plate text(9) primary key, Card short)", "insert into Cars values ('A 1', 77)",
          "alter table Cardholders add column Floor byte not null default 4"})
      (void)main->execute(sql);
    main->close();
  }

  Transferred take(const std::string& main, bool keepGoing = false, bool trial = false) {
    RefusedRows refused(folder / "new.refused", keepGoing);
    Transferred done =
        importInstallation(prompts, {.folder = folder / "new"}, {.main = main}, refused, trial, silent);
    left = refused.count();
    if (keepGoing) {
      EXPECT_THROW(refused.tell(), Leftover);
    }
    return done;
  }
  std::string refusalOf(const std::string& main, bool trial = false) {
    try {
      (void)take(main, false, trial);
    } catch (const Refusal& refusal) {
      return refusal.what();
    } catch (const Error& error) {
      return std::to_string(error.number()) + ' ' + error.description();
    }
    return "";
  }
  Value valueOf(const std::string& sql) {
    return engine->open(folder / "new/KRV.mdb")->openRecordset(sql)->get(0);
  }

  TemporaryFolder folder;
  SystemClock clock;
  std::unique_ptr<DatabaseEngine> engine = makeSqliteEngine(clock);
  ScriptedPrompts prompts;
  Silent silent;
  std::size_t left = 0;
};

TEST_F(Imports, TakeWhatMeetsByNameAndKeepTheRest) {
  // Another engine's file: other types, other cases, other orders, without a table that this system has.
  const auto other = engine->create(folder / "other.mdb");
  other->createTable(
      {"STATIONS", {{"comport", DataType::Text, 9}, {"NAME", DataType::Memo}, {"id", DataType::Double}}, {}});
  (void)other->execute("insert into STATIONS values ('7', 'Nord', 3)");
  (void)take(folder / "old/KRV.mdb");
  EXPECT_EQ(valueOf("select Name from Stations where Id = 3 and ComPort = 7").toText(), "Nord");
  EXPECT_EQ(valueOf("select count(*) from Stations").toInt32(), 1);
  EXPECT_TRUE(valueOf("select PINCodeFlagD from Cardholders where CardNum = 77 and Floor = 4").toBool());
  EXPECT_EQ(valueOf("select Card from Cars").toInt32(), 77);
  EXPECT_EQ(valueOf("select count(*) from DailyPrograms").toInt32(), 2);
  // No mark is set for the door's controller, but what it holds is not known.
  OpenInstallation made(prompts);
  made.open({.folder = folder / "new"});
  const WholePlan planned = planAll(made.library(), {});
  made.leave();
  ASSERT_EQ(planned.controllers.size(), 1U);
  const auto& items = planned.controllers.front().plan.items;
  EXPECT_TRUE(std::any_of(items.begin(), items.end(), [](const PlanItem& item) {
    return item.kind == ThingKind::daily && item.reason == PlanReason::unknown;
  }));
  EXPECT_NE(refusalOf(folder / "old/KRV.mdb").find("holds an installation"), std::string::npos);
  EXPECT_NE(refusalOf(folder / "old/KRV.mdb", true).find("holds an installation"), std::string::npos);

  std::filesystem::remove_all(folder / "new");
  (void)take(folder / "other.mdb");
  EXPECT_EQ(valueOf("select Name from Stations where Id = 3 and ComPort = 7").toText(), "Nord");
  EXPECT_EQ(valueOf("select count(*) from WeeklyPrograms").toInt32(), 2) << "those of a new installation";
}

TEST_F(Imports, MakeNothingOfRowsThatCannotBeUnlessTold) {
  const auto other = engine->create(folder / "other.mdb");
  other->createTable({"Stations", {{"Id", DataType::Long}, {"Name", DataType::Text, 90}}, {}});
  for (const char* row : {"(1, 'Main')", "(1, 'Twice')", "(70000, 'Far')", "(2, Null)",
                          "(3, '12345678901234567890123456789012345678901234567890x')"})
    (void)other->execute(std::string("insert into Stations values ") + row);
  const std::string said = refusalOf(folder / "other.mdb");
  EXPECT_NE(said.find("Id 70000: Id: "), std::string::npos) << said;
  EXPECT_NE(said.find("Id 3: Name: "), std::string::npos) << said;
  EXPECT_FALSE(files::exists(folder / "new/KRV.mdb"));
  EXPECT_FALSE(files::exists(folder / "new/import~unfinished"));

  // What an import that was killed has left: it had moved one of three files.
  files::makeFolder(folder / "new/import~unfinished");
  std::ofstream(folder / "new/import~unfinished/KRV.mdb") << "half";
  std::ofstream(folder / "new/I18N.MDB") << "moved";
  (void)take(folder / "other.mdb", true);
  EXPECT_EQ(left, 4U);
  EXPECT_EQ(valueOf("select Name from Stations").toText(), "Main");
  const std::string refused = files::contents(folder / "new.refused/Stations.csv").value();
  EXPECT_NE(refused.find(",70000,Far\r\n"), std::string::npos) << refused;
  EXPECT_FALSE(files::exists(folder / "new/import~unfinished"));
}

TEST_F(Imports, LookBeforeTheyTouch) {
  EXPECT_NE(refusalOf(folder / "old/Journal.MDB").find("no table Stations"), std::string::npos);
  EXPECT_EQ(refusalOf(folder / "none.mdb").substr(0, 4), "3024");
  EXPECT_TRUE(take(folder / "old/KRV.mdb", false, true).tables.size() > 9);
  EXPECT_FALSE(files::exists(folder / "new/KRV.mdb"));
  std::ofstream(folder / "new/Journal.MDB") << "mine";
  EXPECT_NE(refusalOf(folder / "old/KRV.mdb").find("Journal.MDB already"), std::string::npos);
  EXPECT_EQ(files::contents(folder / "new/Journal.MDB"), "mine");
}

}  // namespace
}  // namespace voxa
