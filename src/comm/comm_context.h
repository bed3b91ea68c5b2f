#pragma once

#include "tables/table_context.h"

namespace voxa {

class Com;
class Reader;
class SendLedger;
class Station;

/// What uses the lines: the road to the controllers, and the two tables that say where they are.
class CommContext : public TableContext {
 public:
  using TableContext::TableContext;

  [[nodiscard]] virtual ::voxa::Com& Com() = 0;
  /// The account of what each controller holds.
  [[nodiscard]] virtual SendLedger& ledger() = 0;
  [[nodiscard]] virtual Station& Stations() = 0;
  [[nodiscard]] virtual Reader& Readers() = 0;
};

}  // namespace voxa
