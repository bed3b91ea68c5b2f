#pragma once

namespace voxa::cli {

class Command;
class Session;

/// Adds "help", "completion", and "complete", which the scripts of the shells call.
void addHelpCommands(Command& program, Session& session);

}  // namespace voxa::cli
