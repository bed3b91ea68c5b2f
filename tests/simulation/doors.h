#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "simulation/session.h"
#include "simulation/world.h"

namespace voxa::simulation {

/// Which doors a card opens when: a bit for each of two doors and sixteen moments, by number and code.
using Openings = std::map<int, std::map<std::string, std::uint32_t>>;

/// As the rows say now, made from them without the library.
[[nodiscard]] std::map<ControllerPlace, Openings> openingsByRows(const World& world, Session& session);
/// As the controllers decide.
[[nodiscard]] std::map<ControllerPlace, Openings> openingsByControllers(const World& world);

/// What opens and was allowed by the rows of no moment since nothing was planned for the card there. notes:
/// file that keeps these moments from one call to the next.
[[nodiscard]] std::vector<std::string> neverAllowed(const World& world, Session& session,
                                                    const fs::path& notes);
/// Where controllers are not what the rows say, or something is still planned.
[[nodiscard]] std::vector<std::string> differences(const World& world, Session& session);

}  // namespace voxa::simulation
