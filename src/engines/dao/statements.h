#pragma once

#include <string_view>

#include "engines/dao/object.h"
#include "platform/database/database.h"

namespace voxa::dao {

/// Whether a text is a statement by its first word, and so no name of a table or query.
[[nodiscard]] bool isStatement(std::string_view text);
/// Gives the parameters of a query their values; names of others are left alone.
void setParameters(const Object& query, const Database::Parameters& parameters);
/// How many parameters a statement declares in front.
[[nodiscard]] std::size_t declaredParameters(std::string_view sql);
/// The kind by the library's number of a query's type.
[[nodiscard]] QueryInfo::Kind queryKind(std::int32_t type);

}  // namespace voxa::dao
