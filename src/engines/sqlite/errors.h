#pragma once

#include <string>
#include <string_view>

#include "platform/error.h"

namespace voxa {

class Catalog;

/// The engine's error for a failed SQLite call on the file at `path`. code: SQLite's extended result code.
/// text: its message.
[[nodiscard]] Error fileFailure(int code, const std::string& text, const std::string& path);

/// The engine's error for a change of `table` that breaks a constraint. It names table, field, index or rule.
/// code: one of SQLITE_CONSTRAINT_... text: SQLite's message, which tells what broke.
[[nodiscard]] Error constraintFailure(int code, const std::string& text, std::string_view table,
                                      const Catalog& catalog);

}  // namespace voxa
