#include "work/look_up.h"

#include <algorithm>

#include "access/badge_format.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "work/installation.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa {

namespace {

bool isNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

bool moveToName(Recordset& rows, const std::string& name) {
  while (!rows.eof() && !equalNoCase(rows.get("Name").toText(), name)) rows.moveNext();
  return !rows.eof();
}

void moveToNumberOrName(Recordset& rows, const char* numberColumn, const std::string& text,
                        const char* mnemonic) {
  if (isNumber(text)) {
    const std::int16_t number = number16("the number", text);
    while (!rows.eof() && rows.get(numberColumn).toInt32() != number) rows.moveNext();
    if (!rows.eof()) return;
    rows.moveFirst();
  }
  if (!moveToName(rows, text)) throw Refusal(mnemonic, text);
}

std::unique_ptr<Recordset> stationNamed(Installation& installation, const std::string& name) {
  auto rows = installation.database().openRecordset("select * from Stations");
  if (!moveToName(*rows, name)) throw Refusal("msgCantFindStation", name);
  return rows;
}

std::unique_ptr<Recordset> readerNamed(Installation& installation, const std::string& name) {
  auto rows = installation.database().openRecordset("select * from Readers");
  if (!moveToName(*rows, name)) throw Refusal("msgCantFindReader", name);
  return rows;
}

bool hasBadgeFormats(Installation& installation) {
  const auto tables = installation.database().tableNames();
  return std::find(tables.begin(), tables.end(), installation.BadgeFormat().Name()) != tables.end();
}

std::unique_ptr<Recordset> badgeFormats(Installation& installation) {
  if (hasBadgeFormats(installation))
    return installation.database().openRecordset("select * from BadgeFormat order by Id");
  throw Refusal("the installation has no badge formats: create the default one with 'voxa badge create'");
}

}  // namespace voxa
