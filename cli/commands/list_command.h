#pragma once

#include <string>

namespace voxa::cli {

class Command;
class Session;

/// Adds a subcommand that prints a list, for a person, or as a JSON array with --json. example: how it is
/// called. print: prints it.
void addListCommand(Command& group, Session& session, const std::string& name, const std::string& help,
                    const std::string& example, void (*print)(Session& session, bool json));

}  // namespace voxa::cli
