#include "access/acc_group_reader.h"

#include "access/access_group.h"
#include "comm/reader.h"
#include "platform/database/database.h"
#include "programs/weekly_program.h"

namespace voxa {

void AccGroupReader::createFields(TableDef& td) {
  addField(td, "AccessGroupId", DataType::Integer);
  addField(td, "ReaderId", DataType::Long);
  gen_.appendField("WeeklyProgType", DataType::Text, 1, "C");
  addField(td, "WeeklyProgNum", DataType::Integer);
  gen_.appendField("FlagD", DataType::Boolean, 0, {});
}

void AccGroupReader::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"AccessGroupId", "ReaderId"}, IndexKind::primary);
}

// Deleting a group or a reader removes its links; a weekly program that a link uses cannot be deleted.
std::int16_t AccGroupReader::createRelations() {
  database().createRelation(
      {"AccGroupReadersAGId", AccessGroup::tableName, Name(), {{"Id", "AccessGroupId"}}, false, true});
  database().createRelation(
      {"AccGroupReadersReaderId", Reader::tableName, Name(), {{"Id", "ReaderId"}}, false, true});
  database().createRelation({"AccGroupReadersWeeklyProg",
                             WeeklyProgram::tableName,
                             Name(),
                             {{"ProgType", "WeeklyProgType"}, {"ProgNum", "WeeklyProgNum"}},
                             false,
                             false});
  return 0;
}

}  // namespace voxa
