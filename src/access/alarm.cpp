#include "access/alarm.h"

#include "access/access_group.h"
#include "comm/station.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

constexpr const char* liftGroup = "LiftGroup";

TableDef liftGroupDefinition() {
  TableDef td;
  td.name = liftGroup;
  addField(td, "AccessGroup", DataType::Integer);
  addField(td, "LiftNum", DataType::Long);
  addIndex(td, "Id", {"AccessGroup", "LiftNum"}, IndexKind::primary);
  return td;
}

}  // namespace

std::int16_t Alarm::create() {
  gen_.buildTable();
  context_.attempt({"msgCantCreateTable", std::string(liftGroup) + ".create"},
                   [&] { database().createTable(liftGroupDefinition()); });
  return 0;
}

std::vector<TableDef> Alarm::definitions() {
  return {gen_.definition(), liftGroupDefinition()};
}

void Alarm::createFields(TableDef& td) {
  addField(td, "Id", DataType::Long);
  addField(td, "Num", DataType::Integer);
  addField(td, "Type", DataType::Text, 1);
  addField(td, "Name", DataType::Text, 50);
  addField(td, "StationId", DataType::Integer);
  addField(td, "ControllerAddress", DataType::Integer);
  addField(td, "AlarmFlagD", DataType::Boolean);
}

void Alarm::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"Id"}, IndexKind::primary);
  addIndex(td, "Name", {"Name"}, IndexKind::uniqueRequired);
  addIndex(td, "Alarm", {"StationId", "ControllerAddress", "Type", "Num"}, IndexKind::unique);
}

std::int16_t Alarm::createRelations() {
  relate("AlarmStation", Station::tableName, "Id", "StationId");
  Relation ofGroup{
      "LiftGroupAccessGroup", AccessGroup::tableName, liftGroup, {{"Id", "AccessGroup"}}, false, true};
  Relation ofOutput{"LiftGroupAlarm", Name(), liftGroup, {{"Id", "LiftNum"}}, false, true};
  database().createRelation(ofGroup);
  database().createRelation(ofOutput);
  return 0;
}

}  // namespace voxa
