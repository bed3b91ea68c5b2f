// An old installation in a file of the Jet database engine, read by the reader program.

#include <gtest/gtest.h>

#include <filesystem>

#include "app/import_installation.h"
#include "engines/sqlite/engine.h"
#include "jet/jet_writer.h"
#include "platform/files.h"
#include "platform/observer.h"
#include "platform/temporary_folder.h"
#include "platform/ui/scripted_prompts.h"
#include "work/refusal.h"

namespace voxa {
namespace {

class Silent : public Observer {
 public:
  void progress(const char* /*what*/, std::size_t /*number*/, std::size_t /*total*/) override {}
};

class JetInstallations : public testing::TestWithParam<int> {
 protected:
  using W = jet::JetWriter;

  void TearDown() override {
    std::filesystem::current_path(before_);
  }  // one that was not opened stays within

  void writeOld(bool badCard) const {
    W w({.version = GetParam()});
    const auto number = [](std::int16_t n) { return W::raw(n); };
    w.table("Stations", {{"Id", 3}, {"Name", 10, 50}, {"ComPort", 3}, {"Active", 1}},
            {{"Id", {0}, true, true, true}});
    w.row({number(1), w.text("Hauptgebäude"), number(3), W::Cell("")});
    w.table("Readers",
            {{"Id", 3}, {"Name", 10, 50}, {"StationId", 3}, {"ControllerAddress", 3}, {"Position", 2}});
    w.row({number(4), w.text("Tür"), number(1), number(2), W::raw(std::uint8_t{1})});
    w.table("Cardholders", {{"Id", 4},
                            {"CardNum", 3},
                            {"Name", 10, 50},
                            {"CardCode", 10, 8},
                            {"AccessGroupId", 3},
                            {"ValidationDate", 8},
                            {"CardCodeFlagD", 1},
                            {"Photo", 11}});
    const auto card = [&](std::int32_t id, const char* name, std::int16_t group) {
      w.row({W::raw(id), number(static_cast<std::int16_t>(id + 100)), w.text(name),
             w.text("0000000" + std::to_string(id)), number(group), W::raw(43831.5), W::Cell(""),
             w.longValue("a picture", W::Form::onePage)});
    };
    card(1, "Ada", 0);
    if (badCard) card(2, "Bo", 9);
    w.write(folder / "old.mdb");
  }

  Transferred take(bool keepGoing) {
    RefusedRows refused(folder / "new.refused", keepGoing);
    Transferred done = importInstallation(prompts, {.folder = folder / "new"}, {.main = folder / "old.mdb"},
                                          refused, false, silent);
    EXPECT_THROW(refused.tell(), Leftover);
    return done;
  }

  const std::filesystem::path before_ = std::filesystem::current_path();
  TemporaryFolder folder;
  SystemClock clock;
  ScriptedPrompts prompts;
  Silent silent;
};

TEST_P(JetInstallations, BecomeInstallationsOfThisSystem) {
  writeOld(true);
  const auto before = files::contents(folder / "old.mdb");
  EXPECT_THROW((void)take(false), Refusal);
  EXPECT_FALSE(files::exists(folder / "new/KRV.mdb"));
  const Transferred done = take(true);
  EXPECT_EQ(files::contents(folder / "old.mdb"), before);

  const auto engine = makeSqliteEngine(clock);
  const auto main = engine->open(folder / "new/KRV.mdb");
  const auto value = [&](const std::string& sql) { return main->openRecordset(sql)->get(0); };
  EXPECT_EQ(value("select Name from Stations where ComPort = 3 and Active").toText(), "Hauptgebäude");
  EXPECT_EQ(value("select Name from Readers where StationId = 1 and Position = 1").toText(), "Tür");
  EXPECT_EQ(value("select count(*) from Cardholders").toInt32(), 1);
  EXPECT_EQ(value("select ValidationDate from Cardholders where CardNum = 101 and CardCodeFlagD"),
            Value(DateTime{43831.5}));
  EXPECT_EQ(value("select Photo from Cardholders"), Value(Bytes{"a picture"}));
  EXPECT_NE(files::contents(folder / "new.refused/Cardholders.csv").value().find(",2,102,Bo,"),
            std::string::npos);
  // The engine of an installation does not write such a file, and says what to do.
  files::rename(folder / "new/KRV.mdb", folder / "put aside");
  files::copy(folder / "old.mdb", folder / "new/KRV.mdb");
  OpenInstallation installation(prompts);
  EXPECT_THROW(installation.open({.folder = folder / "new"}), Refusal);
  EXPECT_NE(prompts.boxes.front().prompt.find("voxa import mdb"), std::string::npos);
  EXPECT_EQ(files::contents(folder / "new/KRV.mdb"), before);
}

INSTANTIATE_TEST_SUITE_P(Versions, JetInstallations, testing::Values(3, 4));

}  // namespace
}  // namespace voxa
