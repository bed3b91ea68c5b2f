#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/database/schema.h"

namespace voxa {

class Database;

/// What the rows of a table come to, in whatever order they are read. Two tables with the same digest hold
/// the same rows, but for a chance of one in 2^64.
struct TableDigest {
  std::size_t rows = 0;
  std::uint64_t sum = 0;
  /// row: a value for each field, as its type stores it.
  void add(const Value* row, std::size_t fields);
  friend bool operator==(const TableDigest&, const TableDigest&) = default;
};

/// Reads those fields of every row of a table.
[[nodiscard]] TableDigest digestOf(Database& database, const std::string& table,
                                   const std::vector<std::string>& fields);

/// A statement that selects those fields of a table.
[[nodiscard]] std::string selectionOf(const std::string& table, const std::vector<std::string>& fields);

}  // namespace voxa
