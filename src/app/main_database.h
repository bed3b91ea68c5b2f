#pragma once

#include <vector>

#include "platform/database/schema_version.h"

namespace voxa {

class Database;
struct TableDef;

/// What has become of the tables of the main database from version to version.
[[nodiscard]] SchemaSteps mainDatabaseSteps();

/// Raises `err::dbNotADatabase` for a database that cannot take the place of the main one: it lacks one of
/// the tables or columns, has one of another type, or holds a value that is not of its column's type. Reads
/// every row.
void requireMainDatabase(Database& candidate, const std::vector<TableDef>& tables);

}  // namespace voxa
