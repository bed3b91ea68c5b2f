#pragma once

namespace CLI {
class App;
}

namespace voxa::cli {

class Session;

/// "batch", "delete" and "invalidate" of the group "card".
void addCardClearingCommands(CLI::App& group, Session& session);
/// "last-unknown" of it.
void addLastUnknownCommand(CLI::App& group, Session& session);

}  // namespace voxa::cli
