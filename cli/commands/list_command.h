#pragma once

#include <string>

namespace CLI {
class App;
}

namespace voxa::cli {

class Session;

/// Adds a subcommand that prints a list, for a person, or as a JSON array with --json. example: how it is
/// called. print: prints it.
void addListCommand(CLI::App& group, Session& session, const std::string& name, const std::string& help,
                    const std::string& example, void (*print)(Session& session, bool json));

}  // namespace voxa::cli
