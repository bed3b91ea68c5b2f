#pragma once

#include <string>
#include <vector>

namespace voxa::cli {

class Command;
class Session;

/// What may follow: commands, options, values of options, and names of the installation. The last word is the
/// one that was begun, "" when none was. Of an installation that cannot be read there are no names.
[[nodiscard]] std::vector<std::string> completions(const Command& program, Session& session,
                                                   const std::vector<std::string>& words);

/// Words as a shell has them before it takes quotation marks and backslashes away. It splits at an equals
/// sign, too: those are put together again.
[[nodiscard]] std::vector<std::string> unquotedWords(const std::vector<std::string>& words);

/// What a shell (bash, zsh, fish) runs to complete the words of this command.
[[nodiscard]] const char* completionScript(const std::string& shell);

}  // namespace voxa::cli
