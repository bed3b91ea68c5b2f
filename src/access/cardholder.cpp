#include "access/cardholder.h"

#include "access/access_group.h"
#include "app/qdb.h"
#include "platform/database/database.h"

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
  relate("CardholderAccessGroup", library_.QDB().AccessGroups().Name(), "Id", "AccessGroupId");
  database().createQuery(
      {"AccessGroupReaders",
       "PARAMETERS [AccessGroupId] Integer;select r.id, r.ControllerAddress, r.Position, a.WeeklyProgNum,"
       "s.id, s.name, s.Active from  AccGroupReaders a, Readers r, Stations s "
       "where a.accessGroupId = [AccessGroupId] and r.id = a.readerId and s.id = r.StationId "
       "order by s.id, r.ControllerAddress asc, r.Position asc"});
  return 0;
}

}  // namespace voxa
