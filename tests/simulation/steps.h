#pragma once

#include <functional>
#include <optional>
#include <string>

#include "simulation/session.h"
#include "simulation/world.h"

namespace voxa::simulation {

/// Something that happens to an installation or to its controllers.
struct Step {
  std::string what;
  /// In a process of its own, with the installation open; or else, without one.
  std::function<void(Session&)> work = {};
  std::function<void()> alone = {};
  /// Whether the process may be killed, or be disturbed by a second one, and another Step may disturb it.
  bool sends = false;
};

/// The next step, chosen at random. What the simulation has to know of it is in the world afterwards.
[[nodiscard]] Step nextStep(World& world);
/// A step that sends, of the shorter ones.
[[nodiscard]] Step disturbance(World& world);
/// A row is changed and marked.
[[nodiscard]] Step editStep(World& world);
/// A controller gets a fault.
[[nodiscard]] Step faultStep(World& world);
/// Another controller, which holds nothing, is put in a place, and the ledger is told.
[[nodiscard]] Step replacedStep(World& world);
void mend(const World& world);
/// Mends all controllers and connects the lines, then sends everything.
[[nodiscard]] Step sendEverything(const World& world);

}  // namespace voxa::simulation
