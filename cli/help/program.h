#pragma once

#include <string>
#include <vector>

namespace voxa::cli {

class Command;
class Session;

/// Adds the commands, and the options before them, to the program's command line. words: those of the command
/// line, without the program's name. When they name a command it is added alone, since making all of them
/// takes longer than most commands do; otherwise, and for help, all are.
void addProgram(Command& program, Session& session, const std::vector<std::string>& words = {});

}  // namespace voxa::cli
