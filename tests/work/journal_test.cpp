#include "journal/journal.h"

#include "journal/journal_files.h"
#include "platform/datetime.h"
#include "platform/files.h"
#include "platform/observer.h"
#include "support/installation_test.h"
#include "work/card_history.h"
#include "work/card_usage.h"
#include "work/journal_follow.h"
#include "work/journal_keeping.h"
#include "work/journal_list.h"
#include "work/journal_verify.h"
#include "work/moments.h"
#include "work/readers.h"
#include "work/refusal.h"

namespace voxa {
namespace {

struct Silent : Observer {
  void progress(const char* /*what*/, std::size_t /*number*/, std::size_t /*total*/) override {}
};

class JournalWorkTest : public test::InstallationTest {
 protected:
  void SetUp() override { createInstallation(); }

  Database& journal() { return *library->QDB().Journal().DB(); }
  /// moment: "#12/24/2026 18:05#" or Null.
  void add(const std::string& moment, const std::string& type, const std::string& name,
           const std::string& data, const std::string& reader = "1, 'Front'") {
    journal().execute(
        "insert into Journal ([Date], StationId, StationName, ReaderId, ReaderName, TransactionType, "
        "CardholderName, TransactionData) values (" +
        moment + ", 1, 'Local', " + reader + ", '" + type + "', '" + name + "', '" + data + "')");
  }
  /// Ids of what passes, in its order.
  std::string found(const JournalFilter& filter) {
    std::string ids;
    JournalList(*library, filter).each([&](const JournalRow& row) { ids += std::to_string(row.id) + " "; });
    return ids;
  }
  std::size_t size() { return journal().openRecordset("select Id from Journal")->recordCount(); }

  Silent silent;
};

TEST_F(JournalWorkTest, ATimeIsReadAsAPersonWritesIt) {
  // It is Thursday, 24 December 2026, 18:05.
  const struct {
    const char *text, *from, *behind;
  } cases[] = {{"24/12/2026", "24/12/2026", "25/12/2026"},
               {"2026-12-24 18:05", "24/12/2026 18:05:00", "24/12/2026 18:06:00"},
               {"Today", "24/12/2026", "25/12/2026"},
               {"yesterday 23:59", "23/12/2026 23:59:00", "24/12/2026"},
               {"thursday", "24/12/2026", "25/12/2026"},
               {"fri", "18/12/2026", "19/12/2026"},
               {"monday 8:00", "21/12/2026 08:00:00", "21/12/2026 08:01:00"},
               {"-7d", "17/12/2026", "18/12/2026"},
               {"-2w", "10/12/2026", "11/12/2026"},
               {"-12h", "24/12/2026 06:05:00", "24/12/2026 06:06:00"},
               {"-30m", "24/12/2026 17:35:00", "24/12/2026 17:36:00"}};
  for (const auto& [text, from, behind] : cases) {
    const Span span = writtenSpan(text, clock);
    EXPECT_EQ(toShortText(span.from), from) << text;
    EXPECT_EQ(toShortText(span.behind), behind) << text;
    EXPECT_EQ(span.from.days, parseDateTime(from)->days) << text;
  }
  for (const char* wrong :
       {"", "18:05", "-", "-d", "-7", "-7x", "--7d", "-9999999d", "mo", "today x", "31/2/2026"})
    EXPECT_THROW((void)writtenSpan(wrong, clock), Refusal) << wrong;
}

TEST_F(JournalWorkTest, TheNewestAreThoseOfTheLatestDatesWhenReadLateToo) {
  for (int day = 1; day <= 28; ++day) add("#2/" + std::to_string(day) + "/2026#", "00", "Ada", "00001200");
  add("#1/5/2026#", "00", "Ben", "00001300");  // 29, read late
  add("#2/28/2026#", "00", "Ben", "00001300");
  add("Null", "00", "Ben", "00001300");
  EXPECT_EQ(found({.last = "3"}), "27 28 30 ");
  EXPECT_EQ(found({.person = "ben", .last = "5"}), "31 29 30 ");
  EXPECT_EQ(found({.until = "6/1/2026", .last = "5"}), "29 ");
  for (int row = 0; row < 1100; ++row) add("#1/6/2026#", "00", "Eve", "00001400");
  EXPECT_EQ(found({.last = "4"}), "26 27 28 30 ");
  EXPECT_THROW(found({.last = "0"}), Refusal);
}

TEST_F(JournalWorkTest, MoreRowsThanAreHeldComeInTheSameOrder) {
  const std::string copy = "insert into Journal ([Date], StationId, TransactionType) select [Date] + ";
  add("#2/1/2026#", "00", "Ada", "00001200");
  for (int twice = 0; twice < 16; ++twice) {
    journal().execute(copy + std::to_string((twice * 7 % 5) / 4.0) +
                      ", StationId, TransactionType from Journal");
  }
  add("Null", "00", "Ben", "00001300");
  for (const bool indexed : {false, true}) {
    const std::size_t rows = indexed ? indexJournal(*library).rows : 65'537;
    EXPECT_EQ(rows, 65'537U);
    DateTime last{-1};
    std::int32_t lastId = 0;
    std::size_t wrong = 0;
    const std::size_t count = JournalList(*library, {}).each([&](const JournalRow& row) {
      wrong += row.date.days > last.days || (row.date.days == last.days && row.id > lastId) ? 0 : 1;
      last = row.date;
      lastId = row.id;
    });
    EXPECT_EQ(count, rows);
    EXPECT_EQ(wrong, 0U);
  }
  EXPECT_TRUE(dropJournalIndex(*library));
  EXPECT_FALSE(dropJournalIndex(*library));
}

TEST_F(JournalWorkTest, PlacesAreFoundUnderTheNamesThatTheyHad) {
  addReader(3, "Lab", 1, 1, 1);
  add("#2/1/2026#", "00", "Ada", "00001200", "3, 'Store'");
  add("#2/2/2026#", "00", "Ada", "00001200", "3, 'Lab'");
  add("#2/3/2026#", "00", "Ada", "00001200", "9, 'Lab'");
  add("#2/4/2026#", "00", "Ada", "00001200", "4, 'Gate'");
  EXPECT_EQ(found({.reader = "lab"}), "1 2 3 ");
  EXPECT_EQ(found({.reader = "store"}), "1 ");
  EXPECT_EQ(found({.station = "LOCAL"}), "1 2 3 4 ");
  EXPECT_THROW(found({.station = "Lokal"}), Refusal);
  EXPECT_THROW(found({.person = "Nobody"}), Refusal);
  EXPECT_THROW(found({.card = "Nobody"}), Refusal);
  EXPECT_THROW(found({.type = "99"}), Refusal);
  EXPECT_THROW(found({.since = "2/2/2026", .until = "1/2/2026"}), Refusal);
  EXPECT_THROW(found({.since = "-1000000w"}), Refusal);
  EXPECT_EQ(found({.card = "1234567", .type = "GRANTED"}), "");
  renameReader(*library, "Lab", "Store room");
  (void)deleteReader(*library, "Store room", {.gone = true});
  addReader(3, "Attic", 1, 1, 1);
  add("#12/26/2026#", "00", "Ada", "00001200", "3, 'Attic room'");
  EXPECT_EQ(found({.reader = "attic"}), "5 ") << "its number was another's";
  EXPECT_EQ(found({.reader = "store room"}), "");
  add("#2/5/2026#", "10", "", "00<0?\?>>");
  EXPECT_EQ(found({.card = "c0ffee"}), "6 ");
}

TEST_F(JournalWorkTest, WhatIsReadLateIsThatOfWhoHadTheNumberThen) {
  const auto give = [&](const std::string& name) {
    db().execute("insert into Cardholders (CardNum, Name, AccessGroupId) values (6, '" + name + "', 0)");
  };
  give("Ann");
  const auto ann = db().openRecordset("select * from Cardholders");
  keepCardHistory(*library, *ann);
  db().execute("update Cardholders set CardNum = 60");
  give("Bob");
  add("#12/23/2026#", "00", "Bob", "00000600", "2, 'Side'");
  add("#12/22/2026#", "00", "Zed", "00000600");
  add("#12/26/2026#", "00", "Bob", "00000600");
  add("#12/20/2026#", "00", "Ann", "00000600");
  EXPECT_EQ(found({.person = "Ann"}), "4 1 ");
  EXPECT_EQ(found({.person = "Bob"}), "3 ");
  EXPECT_EQ(found({.person = "Zed"}), "2 ") << "the history has nobody of that name";
  for (const bool indexed : {false, true}) {
    if (indexed) indexJournal(*library);
    EXPECT_EQ(lastUse(*library, ann->get("Id").toInt32())->reader, "Side") << "the newest, not the last read";
  }
}

TEST_F(JournalWorkTest, ARestoreAddsWhatIsNotThereAndNothingTwice) {
  add("#2/1/2026#", "00", "Ada", "00001200");
  add("#2/1/2026#", "00", "Ada", "00001200");
  add("Null", "99", "", "        ");
  const std::string saved = folder + "/saved.mdb";
  saveJournal(*library, saved, false);
  EXPECT_THROW(saveJournal(*library, saved, false), Refusal);
  EXPECT_THROW(saveJournal(*library, folder + "/Journal.MDB", true), Refusal);
  journal().execute("delete from Journal where Id = 2");
  add("#2/1/2026#", "00", "ADA", "00001200");
  add("#3/1/2026#", "00", "Ada", "00001200");
  const JournalRestoring done = restoreJournal(*library, saved, silent);
  EXPECT_EQ(done.rows, 3U);
  EXPECT_EQ(done.added, 1U);
  EXPECT_EQ(restoreJournal(*library, saved, silent).added, 0U);
  EXPECT_EQ(found({}), "3 1 4 6 5 ");
  for (const char* wrong : {"/KRV.mdb", "/Journal.MDB"})
    EXPECT_THROW(restoreJournal(*library, folder + wrong, silent), Refusal) << wrong;
}

TEST_F(JournalWorkTest, WhatIsDeletedIsSavedAndIsNotMissingInTheArchive) {
  files::makeFolder("Backup");
  const std::string dump = "Backup/J00101 24Dec2026-18.05.00.DAT";
  write(dump,
        "01 00010226080000001200\r\n01 00010226080000001200\r\n01 00010326080000001200\r\nnoise\r\n"
        "01 100103260900000001:2\r\n");
  add("#2/1/2026 8:00#", "00", "Ada", "00001200");
  add("#2/1/2026 8:00#", "00", "Ada", "00001200");
  add("#3/1/2026 8:00#", "00", "Ada", "00001200");
  const auto verified = [&] {
    const JournalVerification found = verifyJournal(*library, "", silent);
    EXPECT_EQ(found.lines, 4U);
    EXPECT_EQ(found.undecoded, 1U);
    EXPECT_EQ(found.unknownCards, 1U);
    return std::to_string(found.inJournal) + " " + std::to_string(found.inSaved) + " " +
           std::to_string(found.missing);
  };
  EXPECT_EQ(verified(), "3 0 0");
  const JournalDeletion plan = planJournalDeletion(*library, "1/3/2026");
  EXPECT_EQ(plan.rows, 2U);
  deleteFromJournal(*library, plan, silent);
  EXPECT_EQ(size(), 1U);
  EXPECT_EQ(verified(), "1 2 0");
  files::remove(plan.file);
  EXPECT_EQ(verified(), "1 0 2");
}

TEST_F(JournalWorkTest, FollowingShowsWhatComesAndTellsOfAControllerOnce) {
  addReader(3, "Lab", 1, 5, 1);
  add("#2/1/2026#", "00", "Ada", "00001200");
  bool answers = true;
  std::string memory;
  driver.answer = [&](const test::RecordingDriver::Call& call) -> std::int16_t {
    if (!answers) return 1;
    if (call.command == cmReadMemory) write("J.DAT", memory);
    return 100;
  };
  std::string seen;
  EXPECT_THROW(JournalFollow(*library, {.reader = "Lob"}), Refusal) << "at once";
  JournalFollow follow(*library, {.reader = "Lab"});
  const auto round = [&] {
    seen.clear();
    follow.round(
        {[&](const JournalRow& row) { seen += "row " + std::to_string(row.id) + " "; },
         [&](const std::string& sentence) { seen += sentence.substr(0, sentence.find(" and")) + " "; },
         [] { return true; }});
    return seen;
  };
  EXPECT_EQ(round(), "");
  EXPECT_FALSE(files::folderExists("Backup"));
  EXPECT_EQ(driver.count(CmSendClear), 0U);
  renameReader(*library, "Lab", "Lab 2");
  memory = "05 00241226080000001200\r\n";
  EXPECT_EQ(round(), "row 2 ");
  EXPECT_EQ(driver.count(CmSendClear), 1U);
  answers = false;
  EXPECT_NE(round(), "");
  EXPECT_EQ(round(), "");
  answers = true;
  memory.clear();
  EXPECT_NE(round(), "");
  EXPECT_EQ(round(), "");
}

}  // namespace
}  // namespace voxa
