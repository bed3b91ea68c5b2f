#pragma once

#include <string>

#include "platform/database/schema.h"

namespace voxa {

// Definitions and values as the statements' text has them, so that they come back as they were.

[[nodiscard]] std::string sqlText(const Value& value);
/// CREATE TABLE, without its indexes.
[[nodiscard]] std::string sqlText(const TableDef& table);
[[nodiscard]] std::string sqlText(const IndexDef& index, const std::string& table);
[[nodiscard]] std::string sqlText(const Relation& relation);
[[nodiscard]] std::string sqlText(const QueryDef& query);

}  // namespace voxa
