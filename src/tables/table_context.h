#pragma once

#include <memory>

#include "files/file_context.h"

namespace voxa {

class Database;

/// What the tables share.
class TableContext : public FileContext {
 public:
  using FileContext::FileContext;

  /// The open main database; empty when none is open. It is another object after the database was created,
  /// opened or restored.
  [[nodiscard]] virtual std::shared_ptr<Database> DB() = 0;
  /// The open main database for callers that need one: raises `err::objectNotSet` when none is open. It stays
  /// open for as long as the caller's operation lasts.
  [[nodiscard]] Database& database();
};

}  // namespace voxa
