#include "access/badge_format.h"

#include <array>
#include <string_view>

#include "access/card_record.h"
#include "comm/com.h"
#include "comm/row_download.h"
#include "files/conversions.h"
#include "messages/strings.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

constexpr std::size_t siteCodeLength = 8;
constexpr std::array<std::string_view, 11> technologyCodes = {"800", "000", "001", "008", "009", "108",
                                                              "508", "300", "200", "201", "600"};

void addLimited(TableDef& td, const char* name, const char* rule) {
  addField(td, name, DataType::Byte, 0, std::uint8_t{0});
  td.fields.back().validationRule = rule;
}

std::string technologyPart(std::int16_t technology, std::int16_t readerNumber) {
  if (technology < 0 || static_cast<std::size_t>(technology) >= technologyCodes.size()) return "";
  return std::to_string(readerNumber).append(technologyCodes[static_cast<std::size_t>(technology)]);
}

std::string commandLine(const Recordset& row, std::int16_t readerNumber, bool isVRMD1) {
  std::string line = "04";
  if (isVRMD1) line += technologyPart(nullToInt(row.get("Techno")), readerNumber);
  for (const char* column : {"Pos_Site", "Size_Site", "Pos_Card"}) {
    line += numberField(nullToInt(row.get(column)), 0, 2, column);
  }
  line += row.get("SystemCard").toBool() ? "04" : "08";
  std::string site = controllerCode(row.get("Val_Site").toText());
  site.resize(siteCodeLength, '0');
  return line + site;
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
  addField(td, "Val_Site", DataType::Text, siteCodeLength);
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
      library_.Strings().read("nameBadgeFormatDefault") + "', 0, 0, 0, 8, 0, 0, '00000000', 0)");
}

void BadgeFormat::CreateTable() {
  create();
  library_.attempt({"msgUnexpecErr", "BadgeFormat.CreateTable"}, [&] { insertDefaultRecs(); });
}

std::int16_t BadgeFormat::download(std::int16_t BadgeFormatID, std::int16_t& ReaderNumber, bool& isVRMD1,
                                   ComponentType compType, const std::string& compName, std::int16_t Params,
                                   bool* AlreadyComTested) {
  if (!library_.Com().readyToSend(compType, compName, AlreadyComTested)) return 0;
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
  what.lines = [&](const Recordset& row) { return std::vector{commandLine(row, ReaderNumber, isVRMD1)}; };
  return downloadRow(library_, gen_, what, {compType, compName}, Params);
}

}  // namespace voxa
