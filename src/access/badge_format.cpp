#include "access/badge_format.h"

#include "comm/com.h"
#include "comm/row_download.h"
#include "files/conversions.h"
#include "lines/badge_format.h"
#include "lines/code.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

void addLimited(TableDef& td, const char* name, const char* rule) {
  addField(td, name, DataType::Byte, 0, std::uint8_t{0});
  td.fields.back().validationRule = rule;
}

BadgeFormatRecord recordOf(const Recordset& row) {
  BadgeFormatRecord format;
  format.technology = nullToInt(row.get("Techno"));
  format.sitePosition = nullToInt(row.get("Pos_Site"));
  format.siteSize = nullToInt(row.get("Size_Site"));
  format.cardPosition = nullToInt(row.get("Pos_Card"));
  format.systemCard = row.get("SystemCard").toBool();
  format.siteCode = row.get("Val_Site").toText();
  return format;
}

}  // namespace

void BadgeFormat::createFields(TableDef& td) {
  addField(td, "Id", DataType::Long);
  td.fields.back().autoIncrement = true;
  addField(td, "Name", DataType::Text, 50);
  addField(td, "SystemCard", DataType::Boolean);
  addField(td, "Techno", DataType::Integer, 0, std::int16_t{0});
  addLimited(td, "Pos_Card", ">=0 and <=32");
  addLimited(td, "Size_Card", ">=0 and <=64");
  addLimited(td, "Pos_Site", ">=0 and <=99");
  addLimited(td, "Size_Site", ">=0 and <=64");
  addField(td, "Val_Site", DataType::Text, codeLength);
  addField(td, "BadgeFormatFlagD", DataType::Boolean);
}

void BadgeFormat::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"Id"}, IndexKind::primary);
  addIndex(td, "Name", {"Name"}, IndexKind::uniqueRequired);
}

void BadgeFormat::insertDefaultRecs() {
  database().execute(
      "Insert into BadgeFormat ( Id, Name, SystemCard, Techno, Pos_Card, Size_Card, Pos_Site, Size_Site, "
      "Val_Site, BadgeFormatFlagD ) values ( 0, '" +
      context_.messages().read("nameBadgeFormatDefault") + "', 0, 0, 0, 8, 0, 0, '00000000', 0)");
}

void BadgeFormat::CreateTable() {
  create();
  context_.attempt({"msgUnexpecErr", "BadgeFormat.CreateTable"}, [&] { insertDefaultRecs(); });
}

std::int16_t BadgeFormat::download(std::int16_t BadgeFormatID, std::int16_t& ReaderNumber, bool& isVRMD1,
                                   ComponentType compType, const std::string& compName, std::int16_t Params,
                                   bool* AlreadyComTested) {
  if (!access_.Com().readyToSend(compType, compName, AlreadyComTested)) return 0;
  return send(BadgeFormatID, ReaderNumber, isVRMD1, {compType, compName}, Params, showing(context_));
}

std::int16_t BadgeFormat::send(std::int16_t BadgeFormatID, std::int16_t ReaderNumber, bool isVRMD1,
                               const Component& component, std::int16_t Params, const Tell& teller) {
  RowDownload what;
  what.condition = "Id = " + std::to_string(BadgeFormatID);
  what.row = "Badge format " + std::to_string(BadgeFormatID);
  what.number = BadgeFormatID;
  what.notFoundMnemonic = "msgCantFindBadgeFormat";
  what.notFoundMethod = "BadgeFormat.download";
  what.notFoundResult = 0;
  what.failureMethod = "BadgeFormat.download";
  what.alwaysShowsFailure = false;
  what.clearsFlags = false;
  what.lines = [&](const Recordset& row) {
    return std::vector{badgeFormatLine(recordOf(row), ReaderNumber, isVRMD1)};
  };
  return downloadRow(access_, gen_, what, component, Params, teller);
}

}  // namespace voxa
