#pragma once

#include <map>

#include "comm/com.h"
#include "journal/journal.h"
#include "platform/datetime.h"
#include "platform/files.h"
#include "support/installation_test.h"

namespace voxa::test {

/// Station 3 with controller 5, doors 1 to 3, behind a driver that dumps `memory`.
class JournalTest : public InstallationTest {
 protected:
  void SetUp() override {
    driver.resultFile = "XXXX1XXXXXXXXXXX";
    createInstallation();
    addStation(3, "North");
    addReader(7, "Front", 3, 5, 1);
    addReader(8, "Back", 3, 5, 2);
    addReader(9, "Side", 3, 5, 3);
    db().execute(
        "insert into Cardholders (CardNum, Name, CardCode) values (812, 'O''Hara, Ann', '00000812')");
    db().execute("insert into Cardholders (CardNum, Name, CardCode) values (4, '" + std::string(45, 'n') +
                 "', '00000004')");
    driver.answer = [this](const RecordingDriver::Call& call) -> std::int16_t {
      if (call.command == cmReadMemory && !silent) write("J.DAT", memory);
      return results.contains(call.command) ? results[call.command] : std::int16_t{100};
    };
  }

  Com& com() { return library->Com(); }
  Journal& journal() { return library->QDB().Journal(); }
  std::int16_t read() { return journal().readTransactions(CTReader, "Front"); }
  /// The rows, one a line: date, station, reader, type, cardholder, data.
  std::string rows() {
    std::string all;
    const auto found = journal().DB()->openRecordset("select * from Journal order by Id");
    for (; !found->eof(); found->moveNext()) {
      for (std::size_t i = 1; i < found->fieldCount(); ++i) {
        all += (i == 1 ? "" : "|") + found->get(i).toText();
      }
      all += "\n";
    }
    return all;
  }
  std::size_t rowCount() { return journal().DB()->openRecordset("select Id from Journal")->recordCount(); }
  /// A row of 24 December 2026, 18:05, at the front door.
  static std::string row(const std::string& typeToData) {
    return "24/12/2026 18:05:00|3|North|7|Front|" + typeToData + "\n";
  }

  std::string memory;                               // what RDMEM writes
  bool silent = false;                              // RDMEM writes nothing
  std::map<ComCommandsEnum, std::int16_t> results;  // 100 unless told otherwise
};

inline const std::string good = "05 10241226180500081200";
inline const std::string goodRow = "10||00081200";

}  // namespace voxa::test
