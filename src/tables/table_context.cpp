#include "tables/table_context.h"

#include "platform/database/database.h"

namespace voxa {

Database& TableContext::database() {
  return *requireOpen(DB());
}

}  // namespace voxa
