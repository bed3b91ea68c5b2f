#pragma once

#include <string>
#include <vector>

#include "platform/database/database.h"

namespace voxa {

/// Does everything that the seam of the database has, in an empty folder, and returns a line for each step:
/// what it gave, or the number that it raised. Every engine gives the same.
[[nodiscard]] std::vector<std::string> seamStory(DatabaseEngine& engine, const std::string& folder);

}  // namespace voxa
