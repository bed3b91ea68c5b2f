#include "work/look_up.h"

#include <algorithm>

#include "access/badge_format.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "work/installation.h"
#include "work/refusal.h"
#include "work/suggestions.h"
#include "work/words.h"

namespace voxa {

namespace {

/// Where rows of a kind are.
struct Kind {
  const char* table;
  const char* number;        // its column
  const char* notFound;      // mnemonic, or the sentence where the catalogue has none that fits
  std::string family = "";   // of weekly programs only
  const char* besides = "";  // what else has to be so of its rows
};

std::unique_ptr<Recordset> rowsWith(Installation& installation, const Kind& kind, const std::string& column,
                                    const char* type, const Value& value) {
  std::vector<std::pair<std::string, Value>> values = {{"pValue", value}};
  std::string declared = "parameters pValue " + std::string(type);
  std::string condition = " where " + column + " = pValue" + kind.besides;
  if (!kind.family.empty()) {
    declared += ", pFamily memo";
    condition += " and ProgType = pFamily";
    values.emplace_back("pFamily", kind.family);
  }
  return installation.database().openRecordset(declared + "; select * from " + kind.table + condition,
                                               values);
}

std::unique_ptr<Recordset> named(Installation& installation, const Kind& kind, const std::string& name) {
  auto rows = rowsWith(installation, kind, "Name", "memo", name);
  if (rows->eof()) {
    const std::string family = kind.family.empty() ? "" : " and ProgType = '" + kind.family + "'";
    const auto known = namesOf(installation, "select Name from " + std::string(kind.table) +
                                                 " where Name is not null" + family + kind.besides);
    const std::string_view said = kind.notFound;
    if (!said.starts_with("msg")) throw Refusal(std::string(said) + " " + name + didYouMean(name, known));
    throw notFound(kind.notFound, name, known);
  }
  return rows;
}

std::unique_ptr<Recordset> numberedOrNamed(Installation& installation, const Kind& kind,
                                           const std::string& text) {
  if (isNumber(text)) {
    auto rows = rowsWith(installation, kind, kind.number, "long", number16("the number", text));
    if (!rows->eof()) return rows;
  }
  return named(installation, kind, text);
}

std::unique_ptr<Recordset> namedOrNumbered(Installation& installation, const Kind& kind,
                                           const std::string& text) {
  if (isNumber(text) && rowsWith(installation, kind, "Name", "memo", text)->eof()) {
    auto rows = rowsWith(installation, kind, kind.number, "long", number16("the number", text));
    if (!rows->eof()) return rows;
  }
  return named(installation, kind, text);
}

void requireBadgeFormats(Installation& installation) {
  if (hasBadgeFormats(installation)) return;
  throw Refusal("the installation has no badge formats: create the default one with 'voxa badge create'");
}

}  // namespace

bool hasTable(Database& database, const std::string& table) {
  const auto names = database.tableNames();
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& name) { return equalNoCase(name, table); });
}

std::vector<std::string> namesOf(Installation& installation, const std::string& statement) {
  const auto rows = installation.database().openRecordset(statement);
  std::vector<std::string> names;
  for (; !rows->eof(); rows->moveNext()) {
    const Value name = rows->get("Name");
    if (!name.isNull()) names.push_back(name.toText());
  }
  return names;
}

std::unique_ptr<Recordset> stationNamed(Installation& installation, const std::string& name) {
  return namedOrNumbered(installation, {"Stations", "Id", "msgCantFindStation"}, name);
}

std::unique_ptr<Recordset> readerNamed(Installation& installation, const std::string& name) {
  return namedOrNumbered(installation, {"Readers", "Id", "msgCantFindReader"}, name);
}

std::unique_ptr<Recordset> alarmNamed(Installation& installation, AlarmKind kind, const std::string& name) {
  const bool lift = kind == AlarmKind::lift;
  return namedOrNumbered(installation,
                         {"Alarms", "Id", lift ? "Can't find lift output" : "msgCantFindAlarm", "",
                          lift ? " and Type = 'M'" : " and (Type <> 'M' or Type is null)"},
                         name);
}

std::unique_ptr<Recordset> dailyProgramNamed(Installation& installation, const std::string& numberOrName) {
  return numberedOrNamed(installation, {"DailyPrograms", "Id", "msgCantFindDailyProg"}, numberOrName);
}

std::unique_ptr<Recordset> weeklyProgramNamed(Installation& installation, const std::string& family,
                                              const std::string& numberOrName) {
  return numberedOrNamed(installation, {"WeeklyPrograms", "ProgNum", "msgCantFindWeeklyProg", family},
                         numberOrName);
}

std::unique_ptr<Recordset> holidayNamed(Installation& installation, const std::string& numberOrName) {
  return numberedOrNamed(installation, {"Holidays", "Id", "Can't find holiday"}, numberOrName);
}

std::unique_ptr<Recordset> badgeFormatNamed(Installation& installation, const std::string& numberOrName) {
  requireBadgeFormats(installation);
  return numberedOrNamed(installation, {"BadgeFormat", "Id", "msgCantFindBadgeFormat"}, numberOrName);
}

bool hasBadgeFormats(Installation& installation) {
  return hasTable(installation.database(), installation.BadgeFormat().Name());
}

std::unique_ptr<Recordset> badgeFormats(Installation& installation) {
  requireBadgeFormats(installation);
  return installation.database().openRecordset("select * from BadgeFormat order by Id");
}

}  // namespace voxa
