#pragma once

#include <string>

namespace voxa::cli {

/// A line of a command file as it is shown unless personal codes are asked for: one that gives a card its
/// code, "1900122468" or "19;01;0012;2468", without it.
[[nodiscard]] std::string withoutPin(std::string line);

}  // namespace voxa::cli
