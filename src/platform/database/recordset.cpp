#include "platform/database/recordset.h"

namespace voxa {

std::vector<std::vector<Value>> getRows(Recordset& rows, std::size_t most) {
  (void)rows.get(0);  // raises the engine's own error without a current row
  std::vector<std::vector<Value>> values(rows.fieldCount());
  for (; most > 0 && !rows.eof(); --most, rows.moveNext()) {
    for (std::size_t i = 0; i < values.size(); ++i) values[i].push_back(rows.get(i));
  }
  return values;
}

}  // namespace voxa
