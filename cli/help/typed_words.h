#pragma once

#include <string>
#include <vector>

#include "output/command_line.h"

namespace voxa::cli {

/// What the words of a command line are, as far as the commands know them.
struct TypedWords {
  const Command* command = nullptr;       ///< the deepest that was named
  const CommandOption* option = nullptr;  ///< the last word is an option that waits for its value
  std::vector<std::string> places;        ///< words that stand for themselves, behind the command's name
  std::string folder = ".";               ///< of --dir
  std::vector<std::string> unknown;  ///< the first word that is no command where one is expected, and all
                                     ///< behind it; or an option that the command does not have
};

[[nodiscard]] TypedWords readWords(const Command& program, const std::vector<std::string>& words);

/// The options that a command takes: its own, and those before the commands.
[[nodiscard]] std::vector<const CommandOption*> optionsOf(const Command& command);

/// Tells what a person may have meant with words that are no commands or options: "did you mean 'voxa card
/// list'?", "" when nothing is near.
[[nodiscard]] std::string meant(const Command& program, const std::vector<std::string>& words);

/// "voxa card list".
[[nodiscard]] std::string calledAs(const Command& command);

}  // namespace voxa::cli
