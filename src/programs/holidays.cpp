#include "programs/holidays.h"

#include "comm/com.h"
#include "comm/controller_date.h"
#include "comm/row_download.h"
#include "files/conversions.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/text.h"

namespace voxa {

namespace {

// One slot of the controllers; the date 000000 empties it.
std::string slotLine(std::int16_t slot, const std::string& date) {
  return "34" + zeroPadded(slot, 2) + date;
}

constexpr const char* everyYear = "00";

std::string dateField(const Recordset& row, DateTime today) {
  const DateTime date = row.get("Date").toDateTime();
  if (row.get("EachYear").toBool()) return formatDateTime(date, "ddmm") + everyYear;
  std::string field = controllerDate(date, today);
  if (field.ends_with(everyYear)) {
    throw Error(err::overflow, "Overflow: the controllers would take " + shortDate(date) +
                                   " for a holiday of every year, as 00 stands for");
  }
  return field;
}

}  // namespace

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
  what.lines = [&](const Recordset& row) {
    (void)numberField(Id, 1, 2, "holiday number");
    return std::vector{slotLine(Id, dateField(row, library_.clock().now()))};
  };
  return downloadRow(library_, gen_, what, {compType, compName}, Params);
}

std::int16_t Holidays::delete_(std::int16_t Id) {
  if (!library_.Com().readyToSend(CTActiveStations, "", nullptr)) return 0;
  return library_.Com().sendCommand(slotLine(Id, "000000"));
}

std::int16_t Holidays::generalDownload(ComponentType compType, const std::string& compName,
                                       bool* AlreadyComTested) {
  if (!library_.Com().readyToSend(compType, compName, AlreadyComTested)) return 0;
  return downloadTable(library_, "select Id from Holidays", "Holidays.generalDownload",
                       [&](const Recordset& row) {
                         return download(row.get("Id").toInt16(), compType, compName, DLFull | DLNoMessage);
                       });
}

}  // namespace voxa
