#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/database/schema.h"

namespace voxa::jet {

/// A row of the system's table of queries: a part of a query's statement.
struct QueryPart {
  std::int32_t query = 0;  ///< the object's number
  int attribute = 0;       ///< which part
  int flag = 0;
  std::string expression;
  std::string name1;
  std::string name2;
  std::string order;  ///< bytes; parts of one kind follow each other by them
};

/// The text of a stored query's statement from its parts. When it cannot be told for certain, `sql` is empty
/// and `reason` says why.
struct ComposedQuery {
  std::string sql;
  std::string reason;
};
[[nodiscard]] ComposedQuery composeQuery(std::vector<QueryPart> parts);

}  // namespace voxa::jet
