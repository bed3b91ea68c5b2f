#pragma once

#include "simulation/world.h"

namespace voxa::simulation {

/// Chooses the lines and controllers of a world.
void choose(World& world);
/// Makes the installation of a world with random rows, and its controllers. In a child process; rows: the
/// choices that the world does not keep.
void build(const World& world, Chance rows);

}  // namespace voxa::simulation
