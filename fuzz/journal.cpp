// A controller's memory on its way from the driver's file to the rows of the journal.

#include "journal/journal_test.h"

#include <filesystem>

#include "journal/undecoded_lines.h"
#include "lines/transaction.h"
#include "platform/text.h"
#include "require.h"

namespace voxa::fuzz {
namespace {

class Memories : public test::JournalTest {
 public:
  Memories() {
    SetUp();
    library->Com().writeLog = false;
  }

  void check(const std::string& bytes) {
    memory = bytes;
    const Expected expected = linesOf(bytes);
    const std::int16_t status = read();
    require(status == (expected.faults ? err::typeMismatch : 0), "the result tells whether all was decoded");
    require(rowCount() == expected.rows, "each line that is a transaction becomes one row");
    require(textOf("J00305.DAT") == bytes, "the memory is kept as it came");
    require(driver.count(CmSendClear) == 1, "what is in the journal is cleared from the controller");
    const auto last = journal().DB()->openRecordset("select top 1 * from Journal order by Id desc");
    if (!last->eof()) {
      require(last->get("TransactionData").toText() == expected.data, "the row holds the line's data");
      require(last->get("Date") == Value(expected.date), "the row holds the line's date");
    }
    clear();
  }

 private:
  struct Expected {
    std::size_t rows = 0;
    bool faults = false;
    DateTime date;  // of the last row
    std::string data;
  };

  Expected linesOf(const std::string& bytes) const {
    Expected expected;
    write("memory", bytes);
    files::Stream lines("memory", files::Stream::Mode::read);
    std::string text;
    while (!lines.atEnd()) {
      lines.readLine(text, UndecodedLines::longestLine);
      if (text.size() < UndecodedLines::longestLine && isBlank(text)) continue;
      TransactionLine line;
      const bool decoded = decodeLine(text, clock.now(), line).empty();
      expected.faults = expected.faults || !decoded;
      if (!decoded) continue;
      ++expected.rows;
      expected.date = line.date;
      expected.data = fromCp1252(line.data);
      const std::string again = zeroPadded(line.controller, 2) + text[2] + std::string(line.type) +
                                formatDateTime(line.date, "ddmmyyhhnn") + std::string(line.data);
      require(text.starts_with(again), "a transaction says what its line says");
    }
    return expected;
  }

  void clear() {
    journal().DB()->execute("delete from Journal");
    driver.calls.clear();
    prompts.boxes.clear();
    for (const char* left : {"J00305.DAT", "J00305.OLD", "J00305.BAD", "Backup"}) {
      std::filesystem::remove_all(left);
    }
  }
  void TestBody() override {}
};

}  // namespace
}  // namespace voxa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static voxa::fuzz::Memories memories;
  memories.check({reinterpret_cast<const char*>(data), size});
  return 0;
}
