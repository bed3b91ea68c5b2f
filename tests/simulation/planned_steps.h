#pragma once

#include "simulation/steps.h"

namespace voxa::simulation {

/// The next step in a world where only plans are carried out, while rows change, with marks or without.
[[nodiscard]] Step nextPlannedStep(World& world);
/// Carries out the plan of everything, or of something.
[[nodiscard]] Step carryOutStep(World& world);
/// What another process does meanwhile: it changes rows, or wants the lines, too, and does not get them.
[[nodiscard]] Step plannedDisturbance(World& world);
/// Mends all controllers, and carries out the plan.
[[nodiscard]] Step carryOutEverything(const World& world);

}  // namespace voxa::simulation
