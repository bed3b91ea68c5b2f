#include "work/badge_formats.h"

#include "access/badge_format.h"
#include "lines/code.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

std::string siteCode(const std::string& text) {
  if (text.size() <= codeLength && text.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos)
    return text;
  throw Refusal("a site code has up to 8 hexadecimal digits, not " + text);
}

/// Marks the row when readers get to know of it.
void setFields(Recordset& row, const BadgeFormatTexts& texts) {
  if (texts.name) row.set("Name", checkedName(*texts.name));
  bool sent = texts.site || texts.systemCard;
  if (texts.site) row.set("Val_Site", siteCode(*texts.site));
  if (texts.systemCard) row.set("SystemCard", *texts.systemCard);
  for (std::size_t i = 0; i < badgeNumberCount; ++i) {
    const BadgeNumber& number = badgeNumbers.at(i);
    if (!texts.numbers.at(i)) continue;
    row.set(number.column, numberWithin(number.called, *texts.numbers.at(i), 0, number.greatest));
    sent = true;
  }
  if (sent) row.set("BadgeFormatFlagD", true);
}

BadgeFormatRow rowOf(const Recordset& row) {
  BadgeFormatRow format;
  format.id = row.get("Id").toInt32();
  format.name = row.get("Name").toText();
  for (std::size_t i = 0; i < badgeNumberCount; ++i) {
    format.numbers.at(i) = row.get(badgeNumbers.at(i).column);
  }
  format.site = row.get("Val_Site");
  format.systemCard = row.get("SystemCard").toBool();
  format.toSend = row.get("BadgeFormatFlagD").toBool();
  return format;
}

}  // namespace

void createBadgeFormats(Installation& installation) {
  if (hasBadgeFormats(installation)) throw Refusal("the installation has badge formats already");
  BadgeFormat& table = installation.BadgeFormat();
  Transaction transaction(installation.engine(), installation.database());
  for (const TableDef& definition : table.definitions()) installation.database().createTable(definition);
  table.insertDefaultRecs();
  transaction.commit();
}

std::int16_t addBadgeFormat(Installation& installation, const BadgeFormatTexts& texts) {
  const auto rows = badgeFormats(installation);
  BadgeFormatTexts whole = texts;
  if (!whole.name) whole.name = "";
  if (!whole.site) whole.site = "";
  const std::int16_t id = installation.BadgeFormat().getFreeId();
  if (id == -1) throw Refusal("the installation has no free number for a badge format");
  rows->addNew();
  rows->set("Id", id);
  setFields(*rows, whole);
  storeRow(installation, *rows, "BadgeFormat", "badge format");
  return id;
}

void changeBadgeFormat(Installation& installation, const std::string& numberOrName,
                       const BadgeFormatTexts& texts) {
  const auto row = badgeFormatNamed(installation, numberOrName);
  row->edit();
  setFields(*row, texts);
  storeRow(installation, *row, "BadgeFormat", "badge format");
}

void restoreDefaultBadgeFormat(Installation& installation) {
  (void)badgeFormats(installation);
  Database& database = installation.database();
  Transaction transaction(installation.engine(), database);
  database.execute("delete from BadgeFormat where Id = 0");
  installation.BadgeFormat().insertDefaultRecs();
  database.execute("update BadgeFormat set BadgeFormatFlagD = True where Id = 0");
  transaction.commit();
}

void deleteBadgeFormat(Installation& installation, const std::string& numberOrName) {
  const auto row = badgeFormatNamed(installation, numberOrName);
  if (row->get("Id").toInt32() == 0) throw Refusal("the default badge format 0 stays");
  row->remove();
}

BadgeFormatRow findBadgeFormat(Installation& installation, const std::string& numberOrName) {
  return rowOf(*badgeFormatNamed(installation, numberOrName));
}

std::vector<BadgeFormatRow> listBadgeFormats(Installation& installation) {
  std::vector<BadgeFormatRow> formats;
  if (!hasBadgeFormats(installation)) return formats;
  for (const auto rows = badgeFormats(installation); !rows->eof(); rows->moveNext()) {
    formats.push_back(rowOf(*rows));
  }
  return formats;
}

}  // namespace voxa
