#pragma once

#include <string>

#include "comm/com_types.h"

namespace voxa::cli {

class Command;
class Session;

/// Where a download or command goes, as the person chose it.
struct ComponentChoice {
  std::string station;
  std::string reader;
};
void addComponentOptions(Command& command, ComponentChoice& choice);
/// The component; a Refusal when there is no such station or reader, or no active station at all.
[[nodiscard]] Component chosen(Session& session, const ComponentChoice& choice);

}  // namespace voxa::cli
