#pragma once

#include <string>
#include <vector>

namespace voxa::cli {

/// What a person asks about who does not know the name of a command.
struct Topic {
  const char* name;
  const char* summary;
  const char* text;
};

[[nodiscard]] const std::vector<Topic>& topics();

}  // namespace voxa::cli
