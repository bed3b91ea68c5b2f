// Reading controllers one by one, so that what one of them held is cleared whatever becomes of the others.

#include <utility>

#include "app/library.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "comm/station.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "platform/database/database.h"

namespace voxa {

std::int16_t Journal::readController(const Source& source, const Begins& begins, const Fails& fails) {
  Com& com = library_.Com();
  const auto fail = [&](const char* mnemonic, const std::string& why) {
    std::string detail = why;
    if (const ErrorInfo error = std::exchange(library_.error(), {}); error.number != 0) {
      detail += "\r\nError " + std::to_string(error.number) + ": " + error.description;
    }
    fails(mnemonic, detail);
  };
  const std::int16_t answer = library_.attempt([&] {
    const std::int16_t result = com.Send(CmReadDate, source.station, source.controller);
    if (result == 0 && !com.inhibitCom) com.noteAnswer(source.station, source.controller);
    return result;
  });
  if (answer != 0) {
    fail("msgCantTransferTransac", com.popErrorList());
    return answer;
  }
  const auto send = [&](ComCommandsEnum command) {
    if (!com.inhibitCom) begins(command);
    return com.Send(command, source.station, source.controller);
  };
  return transfer({send, [&] { return source; }, fail});
}

std::vector<Journal::ControllerRead> Journal::readStation(std::int16_t station) {
  library_.QDB().Stations().createIniFile(station);
  const auto controllers = library_.QDB().Stations().getDB()->openRecordset(
      "select distinct ControllerAddress from Readers where ControllerAddress is not null and StationId = " +
      std::to_string(station) + " order by ControllerAddress");
  std::vector<ControllerRead> reads;
  for (; !controllers->eof(); controllers->moveNext()) {
    ControllerRead& read = reads.emplace_back();
    read.controller = controllers->get("ControllerAddress").toInt16();
    read.result = readController(
        {station, read.controller}, [](ComCommandsEnum) {},
        [&](const char* mnemonic, const std::string& why) {
          read.failure += library_.Strings().read(mnemonic) + " " + why;
        });
  }
  return reads;
}

}  // namespace voxa
