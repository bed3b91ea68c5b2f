// AccessGroup: a group's cards on their way to the controllers.

#include <optional>

#include "access/access_context.h"
#include "access/access_group.h"
#include "access/card_download.h"
#include "comm/com.h"
#include "comm/reader.h"
#include "platform/database/database.h"
#include "platform/notice.h"

namespace voxa {

namespace {

constexpr std::int16_t defaultGroup = 0;

CardParts rightsOfCard() {
  CardParts parts;
  for (const CardPart part : {cardCodePart, validatedPart, accessGroupPart}) parts.set(part);
  return parts;
}

}  // namespace

std::int16_t AccessGroup::download(std::int16_t Id, std::int16_t Params, std::int16_t readerId) {
  bool missing = false;
  bool tested = false;
  const std::int16_t status = context_.attempt([&]() -> std::int16_t {
    missing = gen_.openWhere("id = " + std::to_string(Id));
    if (missing) return -1;
    tested = testedFor(readerId);
    return 0;
  });
  if (missing) {
    context_.report({"msgCantFindAccessGroup", "AccessGroups.download", Value(Id)});
  } else if (status != 0) {
    context_.report({"msgCantDownload", "AccessGroups.download", Value(access_.Com().popErrorList())});
  }
  if (!tested) return status;
  // Read after the test, in which a person may have taken a long time to answer.
  const SentCards sent = send(Id, Params, readerId);
  context_.show(sent.notices);
  return sent.status;
}

SentCards AccessGroup::send(std::int16_t Id, std::int16_t Params, std::int16_t readerId) {
  SentCards sending;
  std::optional<CardDownload> cards;
  sending.status = context_.attempt([&]() -> std::int16_t {
    const std::string condition = "id = " + std::to_string(Id);
    if (gen_.openWhere(condition)) return 0;
    const bool marked = gen_.getFlagDSetFound();
    if ((Params & DLFull) != 0) {
      if (const std::int16_t failed = gen_.setFlagsD(true); failed != 0) return failed;
    } else if (Id != defaultGroup && !marked) {
      return 0;
    }
    const std::int16_t sent = sendCards(Id, readerId, cards);
    // The mark of a group that waits for its other readers stays.
    if (sent != 0 || (readerId != 0 && marked) || gen_.openWhere(condition)) return sent;
    return gen_.setFlagsD(false);
  });
  if (cards) sending.notices = cards->notices();
  if (sending.status != 0) {
    tell(context_, into(sending.notices),
         {"msgCantDownload", "AccessGroups.download", Value(access_.Com().popErrorList())});
  }
  return sending;
}

bool AccessGroup::testedFor(std::int16_t readerId) {
  if (readerId == 0) return access_.Com().readyToSend(CTActiveStations, "", nullptr);
  const auto station = rows(
      "SELECT Stations.Active FROM Stations INNER JOIN Readers ON Stations.Id = Readers.StationId WHERE "
      "Readers.Id=" +
      std::to_string(readerId));
  if (station->eof() || !station->get("Active").toBool()) return false;
  return access_.Com().readyToSend(CTReader, access_.Readers().getName(readerId), nullptr);
}

std::int16_t AccessGroup::sendCards(std::int16_t id, std::int16_t readerId,
                                    std::optional<CardDownload>& sending) {
  CardScope scope;
  std::string links = "AccessGroupId = " + std::to_string(id);
  if (readerId != 0) {
    std::int16_t station = 0;
    std::int16_t address = 0;
    if (access_.Readers().getControllerAddrID(readerId, station, address) != 0) return -1;
    scope = ControllerPlace{station, address};
    links += " and ReaderId = " + std::to_string(readerId);
  }
  CardDownload& download = sending.emplace(access_, scope);
  const auto cards = rows(
      "select id, CardNum, CardCodeFlagD,ValidatedFlagD, AccessGroupIdFlagD from Cardholders where "
      "AccessGroupId = " +
      std::to_string(id));
  for (; !cards->eof(); cards->moveNext()) download.send(cards->get("id").toInt32(), rightsOfCard());
  download.finish();
  if (download.complete()) database().execute("update AccGroupReaders set FlagD = False where " + links);
  return download.status();
}

void AccessGroup::addReaderToDefaultGroup(std::int16_t readerId) {
  context_.attempt({"msgCantAddToDefaultGroup", "AccessGroups.addReaderToDefaultGroup"}, [&] {
    const std::string reader = std::to_string(readerId);
    Transaction transaction(context_.engine(), database());
    database().execute(
        "insert into AccGroupReaders ( AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum )values ( 0, " +
        reader + ", 'C', 0 )");
    // Until the reader has the group's cards, which it may not have today.
    database().execute("update AccGroupReaders set FlagD = True where AccessGroupId = 0 and ReaderId = " +
                       reader);
    transaction.commit();
    download(defaultGroup, DLFull, readerId);
  });
}

void AccessGroup::deleteReaderFromAccessGroups(std::int16_t readerId) {
  context_.attempt([&] {
    database().execute("delete * from AccGroupReaders WHERE readerId = " + std::to_string(readerId));
  });
  context_.error().clear();
}

bool AccessGroup::AccessGroupCheckCom(std::int16_t Id) {
  bool abort = false;
  Com& com = access_.Com();
  if (com.inhibitCom) return abort;
  context_.attempt({"msgUnexpecErr", "AccessGroups.AccessGroupCheckCom"}, [&] {
    const auto readers = rows(
        "SELECT AccGroupReaders.ReaderId FROM Stations INNER JOIN (Readers INNER JOIN AccGroupReaders ON "
        "Readers.Id = AccGroupReaders.ReaderId) ON Stations.Id = Readers.StationId WHERE "
        "Stations.Active=True  "
        "AND AccGroupReaders.AccessGroupId=" +
        std::to_string(Id));
    for (; !readers->eof(); readers->moveNext()) {
      const std::string name = access_.Readers().getName(readers->get("ReaderId").toInt16());
      if (com.TestCom(CTReader, name)) continue;
      abort = com.MsgChooseAbort(CTReader, name);
      return;
    }
  });
  return abort;
}

}  // namespace voxa
