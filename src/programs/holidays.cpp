#include "programs/holidays.h"

#include "comm/com.h"
#include "lines/holiday.h"
#include "platform/clock.h"
#include "platform/database/database.h"

namespace voxa {

std::vector<std::string> linesOfHoliday(const Recordset& row, DateTime today) {
  return {holidayLine({row.get("Id").toInt16(), row.get("Date").toDateTime(), row.get("EachYear").toBool()},
                      today)};
}

void Holidays::createFields(TableDef& td) {
  addField(td, "Id", DataType::Integer);
  addField(td, "Name", DataType::Text, 50);
  addField(td, "Date", DataType::Date);
  addField(td, "EachYear", DataType::Boolean);
  addField(td, "HolidayFlagD", DataType::Boolean);
}

void Holidays::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"Id"}, IndexKind::primary);
  addIndex(td, "Name", {"Name"}, IndexKind::uniqueRequired);
}

std::int16_t Holidays::getFreeId(bool& withNewVRMD1) {
  return freeId(withNewVRMD1 ? 60 : 20);
}

std::int16_t Holidays::download(std::int16_t Id, ComponentType compType, const std::string& compName,
                                std::int16_t Params) {
  return send(Id, {compType, compName}, Params, showing(context_));
}

std::int16_t Holidays::send(std::int16_t Id, const Component& component, std::int16_t Params,
                            const Tell& teller) {
  RowDownload what;
  what.condition = "Id = " + std::to_string(Id);
  what.row = "Holiday " + std::to_string(Id);
  what.number = Id;
  what.notFoundMnemonic = "msgCantFindHolidays";
  what.notFoundMethod = "Holidays.download";
  what.notFoundResult = -1;
  what.failureMethod = "Holidays.download";
  what.alwaysShowsFailure = false;
  what.clearsFlags = true;
  what.lines = lines();
  return downloadRow(comm_, gen_, what, component, Params, teller);
}

std::int16_t Holidays::delete_(std::int16_t Id) {
  if (!comm_.Com().readyToSend(CTActiveStations, "", nullptr)) return 0;
  return comm_.Com().sendCommand(clearHolidayLine(Id));
}

std::int16_t Holidays::generalDownload(ComponentType compType, const std::string& compName,
                                       bool* AlreadyComTested) {
  if (!comm_.Com().readyToSend(compType, compName, AlreadyComTested)) return 0;
  return sendAll({compType, compName}, showing(context_));
}

RowLines Holidays::lines() {
  return [this](const Recordset& row) { return linesOfHoliday(row, context_.clock().now()); };
}

std::int16_t Holidays::sendAll(const Component& component, const Tell& teller) {
  const auto sends = rowSends(comm_, component, "select * from Holidays", lines());
  const ExpectedSends expected(comm_.ledger(), sends);
  return downloadTable(comm_, "select Id from Holidays", "Holidays.generalDownload", teller,
                       [&](const Recordset& row) {
                         return send(row.get("Id").toInt16(), component, DLFull | DLNoMessage, teller);
                       });
}

}  // namespace voxa
