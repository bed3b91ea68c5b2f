#include "platform/database/recordset.h"

#include <algorithm>

#include "platform/error.h"

namespace voxa {

std::vector<std::vector<Value>> getRows(Recordset& rows, std::size_t most) {
  if (rows.eof() || rows.bof()) throw Error(err::dbNoCurrentRecord, "There is no current record");
  std::vector<std::vector<Value>> values(rows.fieldCount());
  for (; most > 0 && !rows.eof(); --most, rows.moveNext()) {
    for (std::size_t i = 0; i < values.size(); ++i) values[i].push_back(rows.get(i));
  }
  return values;
}

}  // namespace voxa
