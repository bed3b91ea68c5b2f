#pragma once

#include "comm/com.h"
#include "files/command_file.h"
#include "messages/strings.h"
#include "support/installation_test.h"

namespace voxa::test {

/// Three stations: Local (1) with a controller of two readers, Annex (7) with one reader, Idle (9), which is
/// not in use.
class ComTest : public InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    driver.resultFile.reset();  // the tests write their own
    addStation(7, "Annex");
    addStation(9, "Idle", false);
    addReader(1, "Door", 1, 3, 1);
    addReader(2, "Gate", 1, 3, 2);
    addReader(3, "Shed", 7, 3, 1);
    for (const char* text : {"msgError", "msgComErr301", "msgComErr5", "msgComErr247", "msgChooseAbort1",
                             "msgChooseAbort2", "msgChooseAbort3", "msgChooseAbort4"}) {
      library->Strings().insert(text, std::string("<") + text + ">", 0, "Test", "Message");
    }
  }
  static constexpr std::int16_t shortOf(int number) { return static_cast<std::int16_t>(number); }
  void status(int station, int controller, int value) {
    com.updateDBComStatus(shortOf(station), shortOf(controller), shortOf(value), clock.moment);
  }
  /// "station.controller=status@date" of every row.
  std::string table() {
    std::string all;
    const auto rows = db().openRecordset("select * from ComStatus order by StationID, CtrAddr");
    for (; !rows->eof(); rows->moveNext()) {
      all += rows->get("StationID").toText() + "." + rows->get("CtrAddr").toText() + "=" +
             rows->get("Status").toText() + "@" + rows->get("Date").toText() + " ";
    }
    return all;
  }
  std::string errors() { return oneLine(com.popErrorList()); }
  void command(const std::string& line) {
    library->CommandFile().fopen();
    library->CommandFile().fprint(line);
    library->CommandFile().fclose();
  }
  Com& com = glob->Com();
};

}  // namespace voxa::test
