#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace voxa::cli {

class Session;

// The cards of an open installation as a table in a text (csv.h), its first line naming the columns.

/// Adds the cards of a table, all or none; how many they are. What is wrong with its lines goes to standard
/// error, and a Refusal follows.
std::size_t importCardTable(Session& session, std::string_view text);

struct CardTable {
  std::string text;
  std::size_t cards = 0;
};
/// All cards that are not deleted, by their numbers; with their personal codes only if asked for.
[[nodiscard]] CardTable cardTable(Session& session, bool showPins);

}  // namespace voxa::cli
