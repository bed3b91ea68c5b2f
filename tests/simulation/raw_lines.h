#pragma once

#include <string>
#include <vector>

#include "simulation/world.h"

namespace voxa::simulation {

/// One to four command lines that anybody might send: most are right, some are cut short, of no known kind,
/// or have values that no controller takes.
[[nodiscard]] std::vector<std::string> rawLines(Chance& chance, bool vrmd1);

}  // namespace voxa::simulation
