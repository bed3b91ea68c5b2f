#pragma once

#include <memory>

#include "files/file_context.h"

namespace voxa {

class Database;

/// What the tables share.
class TableContext : public FileContext {
 public:
  using FileContext::FileContext;

  /// The open main database; empty when none is open. Another one after it was created, opened or restored.
  [[nodiscard]] virtual std::shared_ptr<Database> DB() = 0;
  /// The same for whoever cannot do without: raises `err::objectNotSet` when none is open. The database stays
  /// open while the operation that asked works.
  [[nodiscard]] Database& database();
};

}  // namespace voxa
