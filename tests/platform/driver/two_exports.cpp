#include <cerrno>
#include <cstdint>

// A driver with two of the nine operations. Their results show which arguments they got.

extern "C" {

__attribute__((visibility("default"))) std::int16_t RDDAT(std::int16_t station, std::int16_t address) {
  errno = 5;
  return static_cast<std::int16_t>(station * 100 + address);
}

__attribute__((visibility("default"))) std::int16_t CONNECT(std::int16_t station) {
  return station;
}
}
