#include "simulation/world.h"

#include <cstdlib>

namespace voxa::simulation {

std::string nameOf(const ControllerPlace& place) {
  return std::to_string(place.station) + "/" + std::to_string(place.address);
}

World::World(fs::path voxa, fs::path scratch, std::uint64_t seed)
    : program(std::move(voxa)),
      folder(scratch / "installation"),
      site(scratch / "controllers"),
      chance(seed) {
  ::setenv("TLXP_SITE", site.c_str(), 1);
  for (const fs::path& each : {folder, site}) {
    fs::remove_all(each);
    fs::create_directories(each);
  }
}

}  // namespace voxa::simulation
