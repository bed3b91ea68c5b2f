#include "journal/journal_test.h"

namespace voxa::test {
namespace {

TEST_F(JournalTest, WhatALineSays) {
  const struct {
    std::string memory;
    std::string rows;
  } cases[] = {
      {"05 10241226180500081200", row("10||00081200")},
      {"05 20241226180500081200", row("20|O'Hara, Ann|00081200")},
      {"05x00241226180500999900", row("00|9999|00999900")},
      {"05 24241226180500000400", row("24|" + std::string(40, 'n') + "|00000400")},
      {"05 30241226180510;20<30", row("30||10;20<30")},
      {"05 0024122618050012ab00", row("00|12ab|0012ab00")},
      {"05 102412261805\xE9\xE9\xE9\xE9\xE9\xE9\xE9\xE9", row("10||éééééééé")},
      {"05 22010129000000081200", "01/01/2029|3|North|8|Back|22|O'Hara, Ann|00081200\n"},
      {"05 12290200235900081200", "29/02/2000 23:59:00|3|North|8|Back|12||00081200\n"},
      {"05 11311230000100081200", "31/12/1930 00:01:00|3|North|9|Side|11||00081200\n"},
      {"05 27241226180500081200", "24/12/2026 18:05:00|3|North|-1||27|O'Hara, Ann|00081200\n"},
      {"99 10241226180500081200", "24/12/2026 18:05:00|3|North|-1||10||00081200\n"},
      // An event without a door of its own is at that of the line before, on the first line at none.
      {"05 05241226180500000000\r\n05 10241226180500000001\r\n\r\n05 99241226180500000002\r\n",
       "24/12/2026 18:05:00|3|North|-1||05||00000000\n" + row("10||00000001") + row("99||00000002")},
      {"05 10241226180500000001\r\n05 13241226180500000002\r\n",
       row("10||00000001") + "24/12/2026 18:05:00|3|North|-1||13||00000002\n"},
      // What a driver appends to a transaction, blank lines and end marks are no faults.
      {good + "\r" + good + "   \r" + good + good, row(goodRow) + row(goodRow) + row(goodRow)},
      {good + ";x'\x07" + std::string(8'000'000, '0') + "\r\n \t\r\n" + good + "\x1A\r\n\x1A",
       row(goodRow) + row(goodRow)},
      {"", ""},
      {"\x1A\x1A", ""},
  };
  for (const auto& c : cases) {
    memory = c.memory;
    EXPECT_EQ(read(), 0) << c.memory;
    EXPECT_EQ(rows(), c.rows) << c.memory;
    journal().DB()->execute("delete from Journal");
  }
  clock.moment = toDateTime({2031, 6, 15});
  driver.resultFile = "XXXX1XXXXXXXXXXX\r\n    05  0405010231";
  memory = "05 11010230000100081200";
  EXPECT_EQ(read(), 0);
  EXPECT_EQ(rows(), "01/02/2030 00:01:00|3|North|9|Side|11||00081200\n");
  EXPECT_EQ(query("select [Date] from ComStatus where CtrAddr = 5"), "01/02/2031 04:05:00");
  EXPECT_TRUE(boxes().empty());
  EXPECT_FALSE(files::exists("J00305.BAD"));
}

TEST_F(JournalTest, ALineThatIsNoTransactionIsKeptAndTheOthersAreTaken) {
  const std::string noDate = "no such date or time";
  const struct {
    std::string line;
    std::string why;
  } cases[] = {
      {"05 1024122618050008120", "shorter than a transaction"},
      {"A5 10241226180500081200", "the controller address is not two digits"},
      {"05 1x241226180500081200", "the transaction type is not two digits"},
      {"05 10241326180500081200", noDate},
      {"05 10290227180500081200", noDate},
      {"05 10000026180500081200", noDate},
      {"05 102412-2180500081200", noDate},
      {"05 10241226240500081200", noDate},
      {"05 10241226186000081200", noDate},
      {"05 10241226180500'81200", "the data holds an apostrophe or a control character"},
      {std::string(300, ' ') + "x", "the controller address is not two digits"},
      {std::string(8'000'000, '\0'), "the controller address is not two digits"},
      {std::string(8'000'000, '0'), noDate},
  };
  for (const auto& c : cases) {
    memory = good + "\r\n" + c.line + "\r\n05 05241226180500081200\r\n";
    driver.calls.clear();
    EXPECT_EQ(read(), 13);
    // The event behind a line that nobody can read has no known door.
    EXPECT_EQ(rows(), row(goodRow) + "24/12/2026 18:05:00|3|North|-1||05||00081200\n") << c.why;
    EXPECT_EQ(boxes(), std::vector<std::string>{"Can't transfer transactions from controller |Lines not "
                                                "decoded: 1, kept in J00305.BAD|line 2: " +
                                                c.why + "|(Journal.readTransactions)"});
    EXPECT_EQ(driver.count(CmSendClear), 1U) << "one line must not block the controller for ever";
    const std::string kept = textOf("J00305.BAD");
    EXPECT_NE(kept.find("line 2, " + c.why + ": " + c.line.substr(0, 256) + "\r\n"), std::string::npos);
    EXPECT_EQ(textOf("J00305.DAT"), memory);
    journal().DB()->execute("delete from Journal");
  }
}

TEST_F(JournalTest, NoiseByTheMegabyteStaysSmall) {
  for (int i = 0; i < 20000; ++i) memory += "0\r\n";
  EXPECT_EQ(read(), 13);
  EXPECT_NE(boxes().at(0).find("Lines not decoded: 20000,"), std::string::npos);
  EXPECT_TRUE(textOf("J00305.BAD").ends_with(" 19000 more lines, to be found in the archived file\r\n"));
}

TEST_F(JournalTest, TheLastUnknownCardOfToday) {
  const std::string missing =
      "Can't find a new card code. Pass your card, and read again.|(Journal.getLastCardCode)";
  for (const char* type : {"10", "11", "12", "13"}) {
    journal().DB()->execute(
        std::string("insert into Journal (Id, [Date], ReaderName, TransactionType, TransactionData) values "
                    "(90, Now(), 'Front', '") +
        type + "', '000000" + type + "')");
    EXPECT_EQ(journal().getLastCardCode("Front"), std::string("000000") + type);
  }
  memory =
      "05 10231226235900000001\r\n"                             // yesterday
      "05 10241226100000000002\r\n05 10241226100000000003\r\n"  // in one minute
      "05 12241226110000000004\r\n"                             // at another door
      "05 20241226120000000005\r\n";                            // a known card
  EXPECT_EQ(journal().getLastCardCode("Front"), "00000003");
  EXPECT_EQ(rows().find("00000003"), std::string::npos);
  memory = "";
  EXPECT_EQ(journal().getLastCardCode("Front"), "00000002");
  EXPECT_TRUE(boxes().empty());
  EXPECT_EQ(journal().getLastCardCode("Front"), "");
  EXPECT_EQ(boxes(), std::vector<std::string>{missing});
  EXPECT_EQ(rowCount(), 3U);
}

}  // namespace
}  // namespace voxa::test
