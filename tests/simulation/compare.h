#pragma once

#include <string>
#include <vector>

#include "simulation/session.h"
#include "simulation/world.h"

namespace voxa::simulation {

/// How many values the ledger told, by how well it knows them, and which of them are wrong.
struct Compared {
  long held = 0;
  long assumed = 0;
  long doubt = 0;
  long unknown = 0;
  std::vector<std::string> wrong;

  void addCounts(const Compared& other);
};

/// Compares what the ledger says of each controller with what is there: a held value is the one that is
/// there, one in doubt is among those that it may be, a thing that was never sent is not there.
[[nodiscard]] Compared compare(const World& world, Session& session);

/// Cards of groups that a controller in use should hold and of which its ledger is not certain.
[[nodiscard]] std::vector<std::string> uncertainCards(const World& world, Session& session);

}  // namespace voxa::simulation
