#include "app/engine_by_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/temporary_folder.h"

namespace voxa {
namespace {

/// Serves every file by the one beside it that is its own.
class Beside : public DatabaseEngine {
 public:
  explicit Beside(const Clock& clock) : own_(makeSqliteEngine(clock)) {}
  std::shared_ptr<Database> create(std::string_view path) override {
    return own_->create(std::string(path) + ".own");
  }
  std::shared_ptr<Database> open(std::string_view path, FileUse use) override {
    return own_->open(std::string(path) + ".own", use);
  }
  [[nodiscard]] std::vector<std::shared_ptr<Database>> databases() const override {
    return own_->databases();
  }
  void begin() override { own_->begin(); }
  void commit() override { own_->commit(); }
  void rollback() override { own_->rollback(); }
  [[nodiscard]] bool inTransaction() const override { return own_->inTransaction(); }
  [[nodiscard]] const std::vector<ErrorInfo>& errors() const override { return own_->errors(); }
  [[nodiscard]] std::uint64_t lastFailure() const override { return own_->lastFailure(); }

 private:
  std::unique_ptr<DatabaseEngine> own_;
};

class EnginesByFile : public testing::Test {
 protected:
  EnginesByFile() {
    std::ofstream(jetFile_, std::ios::binary)
        << std::string_view("\0\1\0\0Standard Jet DB\0 and its pages", 34);
    beside_->create(jetFile_)->execute("create table T (Id long)");
  }
  static std::string count(Database& database) {
    return database.openRecordset("select count(*) from T")->get(0).toText();
  }

  SystemClock clock_;
  TemporaryFolder folder_;
  std::string jetFile_ = folder_ / "jet.mdb";
  std::shared_ptr<DatabaseEngine> embedded_ = makeSqliteEngine(clock_);
  std::shared_ptr<DatabaseEngine> beside_ = std::make_shared<Beside>(clock_);
};

TEST_F(EnginesByFile, OneTransactionOverTheFilesOfBoth) {
  EngineByFile engine(embedded_, {{isJetFile, beside_}}, embedded_);
  const auto own = engine.create(folder_ / "own.mdb");
  const auto other = engine.open(jetFile_, FileUse::changing);
  own->execute("create table T (Id long)");
  EXPECT_EQ(engine.databases(), (std::vector{own, other}));
  for (const bool commits : {false, true}) {
    engine.begin();
    EXPECT_EQ(errorOf([&] { engine.begin(); }), err::dbInvalidArgument);
    for (const auto& database : {own, other}) database->execute("insert into T values (1)");
    commits ? engine.commit() : engine.rollback();
    EXPECT_EQ(count(*own) + count(*other), commits ? "11" : "00");
  }
  EXPECT_EQ(errorOf([&] { engine.commit(); }), err::dbNoTransaction);

  // The errors are those of the engine that failed last.
  const auto expectFailure = [&](int number, const std::function<void()>& step) {
    EXPECT_EQ(errorOf(step), number);
    EXPECT_EQ(engine.errors().at(0).number, number);
  };
  expectFailure(err::dbConversion, [&] { other->execute("insert into T values ('x')"); });
  expectFailure(err::dbUnknownTable, [&] { (void)own->openRecordset("nobody"); });
  expectFailure(err::dbNoTransaction, [&] { engine.rollback(); });
  expectFailure(err::dbTooFewParameters, [&] { (void)other->openRecordset("select Nobody from T"); });
}

TEST_F(EnginesByFile, AFileThatNobodyServesIsNamedAndLeftAlone) {
  EngineByFile engine(embedded_, {}, embedded_);
  const auto before = files::contents(jetFile_);
  EXPECT_EQ(errorOf([&] { (void)engine.open(jetFile_, FileUse::changing); }), err::dbNotADatabase);
  const std::string told = engine.errors().at(0).description;
  EXPECT_NE(told.find("voxa import mdb"), std::string::npos) << told;
  EXPECT_NE(told.find("voxa db convert"), std::string::npos) << told;
  EXPECT_EQ(files::contents(jetFile_), before);

  std::ofstream(folder_ / "text.mdb") << std::string(200, 'x');
  EXPECT_EQ(errorOf([&] { (void)engine.open(folder_ / "text.mdb", FileUse::changing); }),
            err::dbNotADatabase);
  EXPECT_EQ(engine.errors().at(0).description.find("Jet"), std::string::npos);
  EXPECT_EQ(errorOf([&] { (void)engine.open(folder_ / "none.mdb", FileUse::changing); }),
            err::dbFileNotFound);
}

}  // namespace
}  // namespace voxa
