// Reading controllers one by one, so that what one of them held is cleared whatever becomes of the others.

#include <utility>

#include "access/access_context.h"
#include "comm/com.h"
#include "comm/station.h"
#include "journal/journal.h"
#include "platform/database/database.h"

namespace voxa {

void Journal::ControllerRead::fail(std::string text) {
  for (std::size_t at = 0; (at = text.find(" \r\n")) != std::string::npos;) text.erase(at, 1);
  failure += text;
}

std::int16_t Journal::readController(const ControllerPlace& source, const Begins& begins,
                                     const Fails& fails) {
  Com& com = access_.Com();
  const auto fail = [&](const char* mnemonic, const std::string& why) {
    std::string detail = why;
    if (const ErrorInfo error = std::exchange(context_.error(), {}); error.number != 0) {
      detail += "\r\nError " + std::to_string(error.number) + ": " + error.description;
    }
    fails(mnemonic, detail);
  };
  const std::int16_t answer = context_.attempt([&] {
    const std::int16_t result = com.Send(CmReadDate, source.station, source.address);
    if (result == 0 && !com.inhibitCom) com.noteAnswer(source.station, source.address);
    return result;
  });
  if (answer != 0) {
    fail("msgCantTransferTransac", com.popErrorList());
    return answer;
  }
  const auto send = [&](ComCommandsEnum command) {
    if (!com.inhibitCom) begins(command);
    return com.Send(command, source.station, source.address);
  };
  return transfer({send, [&] { return source; }, fail});
}

std::vector<Journal::ControllerRead> Journal::readStation(std::int16_t station,
                                                          const std::function<bool()>& goOn) {
  access_.Stations().createIniFile(station);
  const auto controllers = access_.Stations().getDB()->openRecordset(
      "select distinct ControllerAddress from Readers where ControllerAddress is not null and StationId = " +
      std::to_string(station) + " order by ControllerAddress");
  std::vector<ControllerRead> reads;
  for (; !controllers->eof() && (!goOn || goOn()); controllers->moveNext()) {
    ControllerRead& read = reads.emplace_back();
    read.place = {station, controllers->get("ControllerAddress").toInt16()};
    read.name = access_.Com().getName(station, read.place.address);
    read.result = readController(
        read.place, [](ComCommandsEnum) {},
        [&](const char* mnemonic, const std::string& why) {
          read.fail(context_.messages().read(mnemonic) + " " + why);
        });
  }
  return reads;
}

}  // namespace voxa
