#include "app/qdb.h"

#include <sqlite3.h>

#include <filesystem>

#include "comm/com.h"
#include "comm/station.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/full_disk.h"
#include "support/installation_test.h"
#include "tables/itable.h"

namespace voxa {
namespace {

using Strings_ = std::vector<std::string>;

class QDBTest : public test::InstallationTest {};

TEST_F(QDBTest, GlobsShareTheServiceObjectsAndOpenNoDatabase) {
  const Glob second(*library);
  EXPECT_EQ(&second.QDB(), &glob->QDB());
  EXPECT_EQ(&second.Com(), &glob->Com());
  EXPECT_EQ(&second.CommandFile(), &glob->CommandFile());
  EXPECT_EQ(&second.Strings(), &glob->Strings());
  EXPECT_EQ(glob->QDB().DB(), nullptr);
}

TEST_F(QDBTest, InitializeOnAMissingDatabaseReportsItAndKeepsThePaths) {
  ASSERT_EQ(glob->Strings().createDB(), 0);
  glob->insertStrings();
  const std::string path = folder + "\\Missing.mdb";
  glob->Initialize(path, "ini", "log", folder);
  EXPECT_EQ(glob->Com().AppDB, path);
  EXPECT_EQ(glob->Com().Chemin, folder);
  const auto shown = boxes();
  ASSERT_EQ(shown.size(), 2U);  // main database, then journal
  EXPECT_TRUE(shown[0].starts_with("Can't load database|DB Error 3024: ")) << shown[0];
  EXPECT_TRUE(shown[0].ends_with("|(" + path + ")")) << shown[0];
  EXPECT_EQ(glob->QDB().openDB(), 0);
  EXPECT_NE(glob->QDB().openCommonDB(), 0);
  boxes();
  EXPECT_EQ(glob->QDB().createDB(), 0);
  EXPECT_TRUE(std::filesystem::exists("Missing.mdb"));
  EXPECT_TRUE(boxes().empty());
}

TEST_F(QDBTest, CreateDBBuildsEveryTableWithItsDefaultsAndRelations) {
  createInstallation();
  EXPECT_EQ(query("select count(*) from Stations"), "1");
  EXPECT_EQ(query("select Name from Stations where Id = 1 and Active = true"), "Local");
  EXPECT_EQ(query("select Name from DailyPrograms where Id = 1 and DailyProgramFlagD = True"), "Anytime");
  EXPECT_EQ(query("select count(*) from WeeklyPrograms where ProgNum = 0 and DailyProgDay7 = 1"), "2");
  EXPECT_EQ(query("select Name from AccessGroups"), "Anywhere Anytime");
  EXPECT_THROW(db().execute("delete from DailyPrograms where Id = 1"), Error);  // used by weekly programs
  restart();
  glob->Initialize(folder + "\\krv.MDB", "", "", folder);  // found in any case
  EXPECT_TRUE(boxes().empty());
  EXPECT_EQ(query("select Name from Stations"), "Local");
}

TEST_F(QDBTest, TablesAreFoundByNameInAnyCase) {
  EXPECT_EQ(&glob->QDB().tables("stations"), &glob->QDB().Stations());
  EXPECT_EQ(&glob->QDB().tables("JOURNAL"), &glob->QDB().Journal());
  for (const char* unknown : {"BadgeFormat", "AccGroupReaders", ""}) {
    try {
      (void)glob->QDB().tables(unknown);
      ADD_FAILURE() << unknown;
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), err::invalidArgument);
    }
  }
}

TEST_F(QDBTest, CreateDBOverAFileThatIsNotOpenFailsAndLeavesIt) {
  ASSERT_EQ(glob->Strings().createDB(), 0);
  glob->insertStrings();
  write("KRV.mdb", "precious");
  glob->Com().AppDB = "KRV.mdb";
  EXPECT_EQ(glob->QDB().createDB(), err::dbFileExists);
  const auto shown = boxes();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_TRUE(shown[0].starts_with("Can't create database|DB Error 3204: "));
  EXPECT_EQ(textOf("KRV.mdb"), "precious");
  EXPECT_EQ(glob->QDB().openCommonDB(), err::dbNotADatabase);
  EXPECT_EQ(textOf("KRV.mdb"), "precious");
}

TEST_F(QDBTest, CreateDBOverTheOpenDatabaseAsksAndHeedsTheAnswers) {
  createInstallation();
  addStation(2, "Kept");
  prompts.answers = {Answer::cancel};
  EXPECT_EQ(glob->QDB().createDB(), -1);
  EXPECT_EQ(query("select Name from Stations where Id = 2"), "Kept");
  boxes();

  // Yes: what was saved is replaced, the journal too.
  glob->QDB().Journal().DB()->execute("insert into Journal (TransactionData) values ('seen')");
  prompts.answers = {Answer::no, Answer::yes, Answer::no};
  EXPECT_EQ(glob->QDB().createDB(), 0);
  EXPECT_TRUE(glob->QDB().Journal().DB()->openRecordset("select * from Journal")->eof());
  addStation(2, "Kept");
  boxes();

  // No, then No to the second question: the file is saved all the same. The journal is kept (Cancel).
  prompts.answers = {Answer::no, Answer::no, Answer::cancel};
  prompts.choices = {folder + "\\Saved.mdb"};
  EXPECT_EQ(glob->QDB().createDB(), 0);
  EXPECT_EQ(boxes().size(), 3U);
  EXPECT_EQ(query("select count(*) from Stations"), "1");
  EXPECT_TRUE(glob->QDB().Journal().DB()->isOpen());
  const auto saved = engine->open("Saved.mdb");
  EXPECT_FALSE(saved->openRecordset("select * from Stations where Name = 'kept'")->eof());
}

TEST_F(QDBTest, ADatabaseThatCannotBePutAsideIsOpenAgain) {
  createInstallation();
  addStation(2, "Kept");
  const std::string nowhere = folder + "\\nowhere\\Saved.mdb";
  const struct {
    std::int16_t (QDB::*operation)();
    std::deque<Answer> answers;
  } failing[] = {{&QDB::createDB, {Answer::yes}}, {&QDB::saveDB, {}}, {&QDB::restoreDB, {Answer::yes}}};
  for (const auto& c : failing) {
    prompts.answers = c.answers;
    prompts.choices = {nowhere};
    EXPECT_EQ((glob->QDB().*c.operation)(), err::pathNotFound);
    ASSERT_TRUE(glob->QDB().DB()->isOpen());
    EXPECT_EQ(query("select Name from Stations where Id = 2"), "Kept");
  }
  prompts.answers = {Answer::no, Answer::yes, Answer::yes};  // a new database; the journal is to be saved
  prompts.choices = {nowhere};
  EXPECT_EQ(glob->QDB().createDB(), err::pathNotFound);
  EXPECT_TRUE(glob->QDB().Journal().DB()->isOpen());
}

TEST_F(QDBTest, AJournalThatGetsNoTableIsAnError) {
  ASSERT_EQ(glob->Strings().createDB(), 0);
  std::int16_t status = -1;
  for (rlim_t room = 0; status != 0 && room < 100'000; room += 1024) {
    std::filesystem::remove(Journal::dbName);
    {
      const test::FullDisk full(room);
      status = glob->QDB().Journal().createDB();
    }
    EXPECT_EQ(status == 0, boxes().empty()) << room;
  }
  EXPECT_EQ(glob->QDB().Journal().DB()->tableNames(), Strings_{"Journal"});
}

TEST_F(QDBTest, SaveAndRestoreGoThroughAClosedFile) {
  createInstallation();
  addStation(2, "Before");
  prompts.choices = {folder + "\\Backup.mdb"};
  EXPECT_EQ(glob->QDB().saveDB(), 0);
  db().execute("update Stations set Name = 'After' where Id = 2");

  write("garbage.mdb", "no database at all");
  prompts.answers = {Answer::no, Answer::yes};
  prompts.choices = {folder + "\\garbage.mdb"};
  EXPECT_EQ(glob->QDB().restoreDB(), err::dbNotADatabase);
  EXPECT_EQ(query("select Name from Stations where Id = 2"), "After");

  // Databases that open, but are none that could take the place of the main one.
  std::filesystem::copy_file("I18N.MDB", "texts.mdb");
  std::filesystem::copy_file("Backup.mdb", "foreign.mdb");
  sqlite3* raw = nullptr;
  ASSERT_EQ(sqlite3_open("foreign.mdb", &raw), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(raw,
                         "PRAGMA ignore_check_constraints=ON; update Stations set WaitingDelay = '100' || "
                         "char(13, 10) || 'CFL:/etc/passwd'",
                         nullptr, nullptr, nullptr),
            SQLITE_OK)
      << sqlite3_errmsg(raw);
  sqlite3_close(raw);
  boxes();
  const std::pair<const char*, const char*> unfit[] = {
      {"texts.mdb", "it has no table Stations"},
      {"foreign.mdb", "the column WaitingDelay of the table Stations"}};
  for (const auto& [name, why] : unfit) {
    prompts.answers = {Answer::no, Answer::yes};
    prompts.choices = {folder + "\\" + name};
    EXPECT_EQ(glob->QDB().restoreDB(), err::dbNotADatabase);
    EXPECT_NE(boxes().back().find(why), std::string::npos);
    EXPECT_EQ(query("select Name from Stations where Id = 2"), "After");
  }

  prompts.answers = {Answer::cancel};
  EXPECT_EQ(glob->QDB().restoreDB(), -1);
  prompts.answers = {Answer::no, Answer::yes};
  prompts.choices = {folder + "\\Backup.mdb"};
  EXPECT_EQ(glob->QDB().restoreDB(), 0);
  EXPECT_EQ(query("select Name from Stations where Id = 2"), "Before");

  boxes();
  prompts.choices = {folder + "\\journal.mdb"};
  EXPECT_EQ(glob->QDB().saveDB(), -1);
  EXPECT_EQ(boxes().size(), 1U);  // refused
  EXPECT_EQ(query("select Name from Stations where Id = 2"), "Before");
}

TEST_F(QDBTest, DatabasesOfOtherVersions) {
  createInstallation();
  std::filesystem::copy_file("KRV.mdb", "copy.mdb");
  const auto openAll = [&](const std::string& file, int version) {
    plain(file, "pragma user_version=" + std::to_string(version));
    restart();
    glob->Initialize(folder + "\\KRV.mdb", "", "", folder);
    return int{library->DB() != nullptr} + int{glob->QDB().Journal().DB() != nullptr} +
           int{glob->Strings().isOpen()};
  };
  for (const std::string name : {"KRV.mdb", Journal::dbName, "I18N.MDB"}) {
    EXPECT_EQ(engine->open(name)->schemaVersion(), 1U) << name;  // as it was created
    EXPECT_EQ(openAll(name, 0), 3);
    EXPECT_EQ(engine->open(name)->schemaVersion(), 1U) << name;
    EXPECT_TRUE(boxes().empty());
    EXPECT_EQ(openAll(name, 2), 2);
    const auto shown = boxes();
    ASSERT_EQ(shown.size(), 1U) << name;
    EXPECT_NE(shown[0].find(name + " is of a newer version of this system (2, this one knows 1)"),
              std::string::npos)
        << shown[0];
    EXPECT_EQ(engine->open(name)->schemaVersion(), 2U) << name;
    EXPECT_EQ(openAll(name, 1), 3);
  }

  addStation(2, "Present");
  for (const bool newer : {true, false}) {
    plain("copy.mdb", newer ? "pragma user_version=2" : "pragma user_version=0");
    prompts.answers = {Answer::no, Answer::yes};
    prompts.choices = {folder + "\\copy.mdb"};
    EXPECT_EQ(glob->QDB().restoreDB(), newer ? err::dbVersion : 0);
    EXPECT_EQ(query("select Name from Stations where Id = 2"), newer ? "Present" : "none");
    EXPECT_EQ(db().schemaVersion(), 1U);
  }
  plain("KRV.mdb", "pragma user_version=2");  // a newer version was at work meanwhile
  EXPECT_EQ(glob->QDB().saveDB(), -1);
  EXPECT_FALSE(library->DB()->isOpen());
}

TEST_F(QDBTest, SaveWithNoDatabaseOpenOpensIt) {
  createInstallation();
  restart();
  glob->Com().AppDB = "KRV.mdb";
  EXPECT_EQ(glob->QDB().saveDB(), 0);
  EXPECT_NE(glob->QDB().DB(), nullptr);
}

}  // namespace
}  // namespace voxa
