#include "access/cardholder.h"

#include <optional>

#include "access/access_context.h"
#include "access/access_group.h"
#include "access/card_block.h"
#include "access/card_download.h"
#include "access/card_record.h"
#include "comm/com.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "platform/notice.h"

namespace voxa {

void Cardholder::createFields(TableDef& td) {
  const auto flag = [&](const char* name) { addField(td, name, DataType::Boolean); };
  addField(td, "Id", DataType::Long);
  td.fields.back().autoIncrement = true;
  addField(td, "CardNum", DataType::Long);
  addField(td, "Name", DataType::Text, 50);
  flag("Deleted");
  addField(td, "CardCode", DataType::Text, 8);
  flag("CardCodeFlagD");
  gen_.appendField("AccessGroupId", DataType::Integer, 0, std::int16_t{0});
  flag("AccessGroupIdFlagD");
  gen_.appendField("Validated", DataType::Boolean, 0, true);
  flag("ValidatedFlagD");
  addField(td, "PINCode", DataType::Integer);
  flag("PINCodeFlagD");
  flag("Supervisor");
  flag("SupervisorFlagD");
  addField(td, "ValidationDate", DataType::Date);
  flag("ValidationDateFlagD");
  addField(td, "Credit", DataType::Integer);
  flag("CreditFlagD");
  addField(td, "Free", DataType::Memo);
}

void Cardholder::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"Id"}, IndexKind::primary);
  addIndex(td, "CardNum", {"CardNum"}, IndexKind::plain);
  addIndex(td, "CardCode", {"CardCode"}, IndexKind::unique);
  addIndex(td, "Name", {"Name"}, IndexKind::uniqueRequired);
}

std::int16_t Cardholder::createRelations() {
  relate("CardholderAccessGroup", AccessGroup::tableName, "Id", "AccessGroupId");
  database().createQuery(
      {"AccessGroupReaders",
       "PARAMETERS [AccessGroupId] Integer;select r.id, r.ControllerAddress, r.Position, a.WeeklyProgNum,"
       "s.id, s.name, s.Active from  AccGroupReaders a, Readers r, Stations s "
       "where a.accessGroupId = [AccessGroupId] and r.id = a.readerId and s.id = r.StationId "
       "order by s.id, r.ControllerAddress asc, r.Position asc"});
  return 0;
}

std::int16_t Cardholder::getCardNumId(std::int16_t cardNum) {
  std::int16_t id = 0;
  lookUp("select id from Cardholders where cardNum = " + std::to_string(cardNum) + " and Deleted = false",
         {"msgCantFindCardholder", "Cardholders.getCardNumId"}, true,
         [&](Recordset& row) { id = row.get("id").toInt16(); });
  return id;
}

std::string Cardholder::getNameByCardNum(std::int16_t cardNum) {
  std::string name;
  lookUp("select name from Cardholders where cardNum = " + std::to_string(cardNum) + " and Deleted = false",
         {"msgCantFindCardholder", "Cardholders.getNameByCardNum"}, true,
         [&](Recordset& row) { name = row.get("name").toText(); });
  return name;
}

bool Cardholder::getCardNumInUse(std::int16_t cardNum) {
  bool inUse = false;  // asked by itself: an Id above 32,767 is no result of getCardNumId
  lookUp("select id from Cardholders where cardNum = " + std::to_string(cardNum) + " and Deleted = false",
         {"msgCantFindCardholder", "Cardholders.getCardNumInUse"}, true, [&](Recordset&) { inUse = true; });
  return inUse;
}

bool Cardholder::getCardCodeInUse(std::int32_t cardCode) {
  return !rows("select id from Cardholders where cardCode = " + std::to_string(cardCode))->eof();
}

std::int16_t Cardholder::getFreeCardNum() {
  return gen_.getFreeValue("CardNum", "");
}

std::int16_t Cardholder::invalidate(std::int16_t cardNum, ComponentType compType,
                                    const std::string& compName) {
  return context_.attempt({"msgCantWriteCommand", "Cardholders.invalidate"}, [&] {
    return access_.Com().sendLines({clearCardLine(cardNum)}, compType, compName);
  });
}

std::int16_t Cardholder::delete_(std::int16_t cardNum) {
  return access_.Com().sendCommand(clearCardLine(cardNum), CTActiveStations);
}

std::int16_t Cardholder::download(std::int16_t Id) {
  std::optional<std::int16_t> group;
  lookUp("select AccessGroupID From Cardholders where ID =" + std::to_string(Id),
         {"msgCantFindCardholder", "Cardholders.download"}, true,
         [&](Recordset& row) { group = nullToInt(row.get("accessGroupId")); });
  if (group && access_.AccessGroups().AccessGroupCheckCom(*group)) return 0;
  CardDownload download(access_, {});
  download.send(Id, {});
  const SentCards sent = conclude(download, "Cardholders.download", DLDefault);
  context_.show(sent.notices);
  return sent.status;
}

std::int16_t Cardholder::generalDownload(ComponentType compType, const std::string& compName,
                                         std::int16_t Params, bool* AlreadyComTested) {
  if (!isKnown(compType)) {
    // Without this what is neither a reader nor a station would be every controller.
    return context_.attempt({"msgCantDownload", "Cardholders.generalDownload"},
                            [&] { requireKnown(compType); });
  }
  if (!access_.Com().readyToSend(compType, compName, AlreadyComTested)) return 0;
  const SentCards sent = sendAll({compType, compName}, Params);
  context_.show(sent.notices);
  return sent.status;
}

SentCards Cardholder::sendAll(const Component& component, std::int16_t Params) {
  SentCards sent{0, finishUnfinishedBlocks(access_)};
  CardScope scope;
  std::int16_t station = 0;
  std::int16_t address = CmToEachController;
  if (component.type == CTStation) {
    station = access_.Stations().getId(component.name);
    if (station == -1) sent.status = -1;
  } else if (component.type == CTReader) {
    if (access_.Readers().getControllerAddr(component.name, station, address) != 0) sent.status = -1;
  }
  if (sent.status != 0) return sent;  // which the table has shown
  if (component.type != CTActiveStations) scope = ControllerPlace{station, address};
  CardParts anyway;
  if ((Params & (DLFull | DLMemErased)) != 0) anyway.set();
  CardDownload download(access_, scope);
  const std::int16_t failed = context_.attempt([&] {
    const auto cards = rows("select Id from cardholders where Deleted = false");
    for (; !cards->eof(); cards->moveNext()) download.send(cards->get("Id").toInt32(), anyway);
  });
  if (failed != 0) {
    tell(context_, into(sent.notices), {"msgCantDownload", "Cardholders.generalDownload"});
  }
  SentCards end = conclude(download, "Cardholders.generalDownload", Params);
  sent.status = failed != 0 ? failed : end.status;
  std::move(end.notices.begin(), end.notices.end(), std::back_inserter(sent.notices));
  return sent;
}

// Writes the last flags, and says what the cards met on their way, once for all of them.
SentCards Cardholder::conclude(CardDownload& download, const char* method, std::int16_t params) {
  download.finish();
  const bool inactive = !download.inactiveStations().empty();
  SentCards sent{inactive ? std::int16_t{1} : download.status(), download.failures()};
  if ((params & DLNoMessage) != 0) return sent;
  sent.notices = download.notices();
  if (download.status() != 0 && download.failures().empty()) {
    tell(context_, into(sent.notices), {"msgCantDownload", method, Value(access_.Com().popErrorList())});
  }
  return sent;
}

}  // namespace voxa
