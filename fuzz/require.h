#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace voxa::fuzz {

/// Ends the process when a property does not hold; the fuzzer then keeps the input.
inline void require(bool holds, const std::string& property) {
  if (holds) return;
  (void)std::fprintf(stderr, "Property broken: %s\n", property.c_str());
  std::abort();
}

}  // namespace voxa::fuzz
