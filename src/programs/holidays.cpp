#include "programs/holidays.h"

#include "platform/database/schema.h"

namespace voxa {

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

std::int16_t Holidays::getFreeId(bool withNewVRMD1) {
  return freeId(withNewVRMD1 ? 60 : 20);
}

}  // namespace voxa
