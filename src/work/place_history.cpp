#include "work/place_history.h"

#include "platform/clock.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/look_up.h"

namespace voxa {

namespace {

constexpr const char* table = "PlaceHistory";

void provideTable(Database& database) {
  if (hasTable(database, table)) return;
  constexpr int kindSize = 10;
  constexpr int nameSize = 50;
  TableDef made{table, {}, {}};
  addField(made, "Kind", DataType::Text, kindSize);
  addField(made, "PlaceId", DataType::Long);
  addField(made, "Name", DataType::Text, nameSize);
  made.fields.back().allowZeroLength = true;  // as other programs may have left it
  addField(made, "Until", DataType::Date);
  addField(made, "Deleted", DataType::Boolean);
  database.createTable(made);
}

std::string nameOf(PlaceKind kind) {
  return kind == PlaceKind::reader ? "Reader" : "Station";
}

}  // namespace

void keepPlaceHistory(Installation& installation, PlaceKind kind, const Recordset& place, PlaceEnd end) {
  provideTable(installation.database());
  (void)installation.database()
      .prepare(
          "parameters pKind memo, pId long, pName memo, pUntil datetime, pDeleted bit; insert into "
          "PlaceHistory (Kind, PlaceId, Name, [Until], Deleted) values (pKind, pId, pName, pUntil, pDeleted)")
      ->execute({nameOf(kind), place.get("Id").toInt32(), place.get("Name"), installation.clock().now(),
                 end == PlaceEnd::deleted});
}

std::optional<DateTime> placeSince(Installation& installation, PlaceKind kind, std::int32_t id) {
  if (!hasTable(installation.database(), table)) return std::nullopt;
  const auto rows = installation.database().openRecordset(
      "parameters pKind memo, pId long; select [Until] from PlaceHistory where Kind = pKind and PlaceId = "
      "pId "
      "and Deleted = true order by [Until] desc",
      {{"pKind", nameOf(kind)}, {"pId", id}});
  if (rows->eof()) return std::nullopt;
  return rows->get("Until").toDateTime();
}

bool wasPlace(Installation& installation, PlaceKind kind, const std::string& name) {
  if (!hasTable(installation.database(), table)) return false;
  return !installation.database()
              .openRecordset(
                  "parameters pKind memo, pName memo; select Name from PlaceHistory where Kind = pKind and "
                  "Name = pName",
                  {{"pKind", nameOf(kind)}, {"pName", name}})
              ->eof();
}

}  // namespace voxa
